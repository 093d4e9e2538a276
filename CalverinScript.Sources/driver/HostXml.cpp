#include "HostXml.h"

#include <QTextCodec>

#include <tinyxml.h>

#include "GuardedXml.h"

namespace {

bool IsUtf8(const QByteArray& bytes) {
    QTextCodec::ConverterState state;
    QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

/// The printer lets what begins like a reference to a character pass as it is, so the "&" in front is made such a reference
/// itself.
std::string WithoutReferences(const std::string& text) {
    static const std::string kReference = "&#x";
    static const std::string kEscaped = "&#x26;#x";
    std::string result;
    std::size_t from = 0;
    for (std::size_t at = text.find(kReference); at != std::string::npos; at = text.find(kReference, from)) {
        result.append(text, from, at - from).append(kEscaped);
        from = at + kReference.size();
    }
    return result.append(text, from, std::string::npos);
}

void ProtectReferences(TiXmlNode& node) {
    if (TiXmlElement* element = node.ToElement())
        for (TiXmlAttribute* a = element->FirstAttribute(); a != nullptr; a = a->Next())
            a->SetValue(WithoutReferences(a->ValueStr()));
    TiXmlText* text = node.ToText();
    if (text != nullptr && !text->CDATA())
        text->SetValue(WithoutReferences(text->ValueStr()));
    for (TiXmlNode* child = node.FirstChild(); child != nullptr; child = child->NextSibling())
        ProtectReferences(*child);
}

} // namespace

bool ParseHostXml(TiXmlDocument& document, const char* text, bool* plain8Bit) {
    if (text == nullptr)
        return false;
    const QByteArray bytes(text);
    const bool isPlain = !IsUtf8(bytes);
    if (plain8Bit != nullptr)
        *plain8Bit = isPlain;
    return ParseXml(document, isPlain ? QString::fromLatin1(bytes).toUtf8().constData() : text);
}

std::string PrintHostXml(TiXmlDocument& document) {
    ProtectReferences(document);
    return PrintXml(document);
}

void SetXmlText(TiXmlElement& element, const char* attribute, const QString& text) {
    element.SetAttribute(std::string(attribute), text.toStdString());
}

void SetXmlNumber(TiXmlElement& element, const char* attribute, std::int64_t number) {
    element.SetAttribute(std::string(attribute), std::to_string(number));
}

QString XmlText(const TiXmlElement& element, const char* attribute) {
    const std::string* text = element.Attribute(std::string(attribute));
    return text != nullptr ? QString::fromStdString(*text) : QString();
}

std::int32_t XmlNumber(const TiXmlElement& element, const char* attribute, std::int32_t missing) {
    bool isNumber = false;
    const std::int32_t number = XmlText(element, attribute).toInt(&isNumber);
    return isNumber ? number : missing;
}

TiXmlElement& AddXmlElement(TiXmlElement& parent, const char* name) {
    return *parent.LinkEndChild(new TiXmlElement(name))->ToElement();
}

void AddXmlProperty(TiXmlElement& properties, const char* name, const QString& value) {
    TiXmlElement& property = AddXmlElement(properties, "Property");
    property.SetAttribute("Name", name);
    SetXmlText(property, "Value", value);
}

QString FindXmlProperty(const TiXmlElement& element, const char* name) {
    const TiXmlElement* properties = element.FirstChildElement("Properties");
    const TiXmlElement* property = properties != nullptr ? properties->FirstChildElement("Property") : nullptr;
    for (; property != nullptr; property = property->NextSiblingElement("Property"))
        if (XmlText(*property, "Name") == QLatin1String(name))
            return XmlText(*property, "Value");
    return QString();
}
