#pragma once

#include <string>

#include <QString>

class TiXmlDocument;
class TiXmlElement;

/// @file
/// XML texts that the host keeps for the module, on top of the guarded parser. They are UTF-8; texts of hosts that
/// wrote plain 8-bit text are read as that. Pure functions, callable on any thread.

/// Parses a text of the host.
/// @param plain8Bit set to whether the text was no UTF-8; may be null.
/// @return false as ParseXml.
bool ParseHostXml(TiXmlDocument& document, const char* text, bool* plain8Bit = nullptr);

/// Sets an attribute.
void SetXmlText(TiXmlElement& element, const char* attribute, const QString& text);
void SetXmlNumber(TiXmlElement& element, const char* attribute, std::int64_t number);

/// An attribute's text; null when there is none.
QString XmlText(const TiXmlElement& element, const char* attribute);
/// An attribute as a whole number, the second value when it is none.
std::int32_t XmlNumber(const TiXmlElement& element, const char* attribute, std::int32_t missing);

/// Adds an element at the end of another's children. @return it, owned by the parent.
TiXmlElement& AddXmlElement(TiXmlElement& parent, const char* name);

/// Adds `Property` with `Name` and `Value`.
void AddXmlProperty(TiXmlElement& properties, const char* name, const QString& value);

/// The value of the `Property` of that name among the children
/// of `Properties` below the element; null when there is none.
QString FindXmlProperty(const TiXmlElement& element, const char* name);
