#include "VariableXml.h"

#include <algorithm>

#include <tinyxml.h>

#include "CommandXml.h"
#include "DriverTables.h"
#include "HostText.h"
#include "HostXml.h"
#include "MDate.h"
#include "ValueConversion.h"

namespace {

bool IsEnum(const QString& type) {
    return type == QLatin1String("EnumData");
}

void WriteProperties(TiXmlElement& element, PropertyOwner owner, const QString& type,
                     const ScriptProperties& properties) {
    for (const QString& name : AllowedProperties(owner, type)) {
        const QString text = FindProperty(properties, name);
        if (!text.isNull())
            SetXmlText(element, name.toLatin1().constData(), text);
    }
}

/// As attributes or, in older setups, as children of `Properties`.
void ReadProperties(const TiXmlElement& element, PropertyOwner owner, const QString& type,
                    ScriptProperties& properties) {
    for (const QString& name : AllowedProperties(owner, type)) {
        const QByteArray attribute = name.toLatin1();
        QString text = XmlText(element, attribute.constData());
        if (text.isNull())
            text = FindXmlProperty(element, attribute.constData());
        if (!text.isNull())
            StoreProperty(properties, owner, type, name, text);
    }
}

bool CanNameElement(const QString& type) {
    const auto isLetter = [](QChar c) {
        return (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) || (c >= QLatin1Char('a') && c <= QLatin1Char('z'));
    };
    return !type.isEmpty() && std::all_of(type.begin(), type.end(), isLetter);
}

void WriteDateParts(TiXmlElement& element, const QString& value) {
    MDate date;
    date.SetFromText(ToHostText(value).constData());
    SetXmlText(element, "Value", value);
    for (const char* prefix : {"", "Default"}) {
        const auto write = [&](const char* part, std::int32_t number) {
            SetXmlNumber(element, (std::string(prefix) + part).c_str(), number);
        };
        write("Year", date.GetYear());
        write("Month", date.GetMonth());
        write("Day", date.GetDay());
    }
}

/// What stands behind the value in each type.
void WriteTypeDefaults(TiXmlElement& element, const MScriptVariable& variable, KXPDataType code) {
    if (code == KXP_REAL_DATA) {
        element.SetAttribute("Precision", "5");
        element.SetAttribute("MinValue", "-1.7e+308");
        element.SetAttribute("MaxValue", "1.7e+308");
    } else if (code == KXP_TIME_DATA) {
        const QString target = FindProperty(variable.properties, QStringLiteral("ToTimeCodeType"));
        element.SetAttribute("TimeCodeType", "4");
        SetXmlText(element, "ToTimeCodeType", target.isNull() ? QStringLiteral("4") : target);
    } else if (code == KXP_ENUM_DATA) {
        element.SetAttribute("EnumCount", "0");
    }
}

void WriteValue(TiXmlElement& element, const MScriptVariable& variable, const DataKind& kind) {
    const QString value = ConvertForHost(variable);
    if (kind.code == KXP_STRING_DATA)
        element.SetAttribute("MaxLength", "-1");
    if (kind.code == KXP_DATE_DATA) {
        WriteDateParts(element, value);
    } else {
        SetXmlText(element, kind.valueAttribute, value);
        SetXmlText(element, kind.defaultAttribute, value);
    }
    WriteTypeDefaults(element, variable, kind.code);
    WriteProperties(element, PropertyOwner::Variable, variable.type, variable.properties);
    if (kind.code == KXP_ENUM_DATA)
        AddEnumStrings(element, variable.enumItems);
}

} // namespace

std::unique_ptr<TiXmlElement> MakeMonitorElement(const MScriptVariable& variable) {
    auto element = std::make_unique<TiXmlElement>("Monitor");
    SetXmlText(*element, "Name", variable.name);
    SetXmlText(*element, "Type", variable.type);
    SetXmlText(*element, "Value", variable.value);
    SetXmlText(*element, "ValueType", variable.valueType);
    SetXmlText(*element, "DefaultScriptValue", variable.defaultScriptValue);
    SetXmlNumber(*element, "UseDefaultScriptValue", variable.useDefaultScriptValue ? 1 : 0);
    WriteProperties(*element, PropertyOwner::Variable, variable.type, variable.properties);
    if (IsEnum(variable.type))
        AddEnumStrings(*element, variable.enumItems);
    return element;
}

bool ReadMonitorElement(const TiXmlElement& element, MScriptVariable& variable) {
    variable.name = XmlText(element, "Name");
    variable.type = XmlText(element, "Type");
    variable.value = XmlText(element, "Value");
    if (variable.name.isEmpty() || variable.type.isEmpty() || variable.value.isNull())
        return false;
    const QString valueType = XmlText(element, "ValueType");
    if (!valueType.isEmpty())
        variable.valueType = valueType;
    variable.defaultScriptValue = XmlText(element, "DefaultScriptValue");
    if (variable.defaultScriptValue.isNull())
        variable.defaultScriptValue = variable.value;
    variable.useDefaultScriptValue = XmlNumber(element, "UseDefaultScriptValue", 1) != 0;
    ReadProperties(element, PropertyOwner::Variable, variable.type, variable.properties);
    if (IsEnum(variable.type))
        variable.enumItems = ReadEnumStrings(element);
    return true;
}

/// A setting's shown name is not written: `Name` is what the
/// setting is found by, and the script tells the other each time.
std::unique_ptr<TiXmlElement> MakeSettingElement(const MScriptSetting& setting) {
    auto element = std::make_unique<TiXmlElement>("Setting");
    element->SetAttribute("Name", "");
    SetXmlText(*element, "Type", setting.type);
    SetXmlText(*element, "Value", setting.value);
    SetXmlNumber(*element, "Widget", setting.widget);
    WriteProperties(*element, PropertyOwner::Setting, setting.type, setting.properties);
    SetXmlText(*element, "Name", setting.name);
    if (IsEnum(setting.type))
        AddEnumStrings(*element, setting.items);
    return element;
}

bool ReadSettingElement(const TiXmlElement& element, MScriptSetting& setting) {
    setting.name = XmlText(element, "Name");
    setting.type = XmlText(element, "Type");
    if (setting.name.isEmpty() || setting.type.isEmpty())
        return false;
    setting.value = XmlText(element, "Value");
    ReadProperties(element, PropertyOwner::Setting, setting.type, setting.properties);
    const auto isNoProperty = [](const QPair<QString, QString>& property) {
        bool isKindNumber = false;
        property.second.toInt(&isKindNumber);
        return property.first == QLatin1String("Name") || (property.first == QLatin1String("Widget") && isKindNumber);
    };
    setting.properties.erase(std::remove_if(setting.properties.begin(), setting.properties.end(), isNoProperty),
                             setting.properties.end());
    const DataKind* kind = FindDataKind(setting.type);
    const int widget = WidgetKindOf(XmlText(element, "Widget"));
    setting.widget = widget < 0 && kind != nullptr ? kind->widget : std::max(widget, 0);
    if (IsEnum(setting.type))
        setting.items = ReadEnumStrings(element);
    return true;
}

std::unique_ptr<TiXmlElement> MakeVariableElement(const MScriptVariable& variable, std::uint32_t instanceId) {
    if (!CanNameElement(variable.type))
        return nullptr;
    auto element = std::make_unique<TiXmlElement>(variable.type.toLatin1().constData());
    SetXmlNumber(*element, "InstanceID", instanceId);
    SetXmlText(*element, "Name", variable.name);
    if (const DataKind* kind = FindDataKind(variable.type))
        WriteValue(*element, variable, *kind);
    return element;
}
