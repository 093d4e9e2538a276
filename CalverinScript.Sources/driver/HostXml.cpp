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
