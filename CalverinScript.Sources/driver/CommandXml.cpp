#include "CommandXml.h"

#include <tinyxml.h>

#include "DriverTables.h"
#include "HostXml.h"

namespace {

constexpr const char* kActive = "Active";
constexpr const char* kDisabled = "Disabled";

/// Attributes of every command with what they say unless the script says otherwise.
struct DefaultAttribute {
    const char* name;
    const char* value;
};
constexpr DefaultAttribute kGroupDefaults[] = {
    {"GroupName", "User Commands"}, {"GroupOrder", "1"}, {"GroupCmdOrder", "0"}};

/// What is read back as a property: what differs from what is written without one.
void ReadCommandProperties(const TiXmlElement& element, MScriptCommand& command) {
    const auto take = [&](const char* name, const char* usual) {
        const QString text = XmlText(element, name);
        if (!text.isNull() && text != QLatin1String(usual))
            StoreProperty(command.properties, PropertyOwner::Command, QString(), QLatin1String(name), text);
    };
    take("Version", "0");
    const QString status = XmlText(element, "Status");
    command.active = status != QLatin1String(kDisabled);
    if (command.active)
        take("Status", kActive);
    for (const DefaultAttribute& attribute : kGroupDefaults)
        take(attribute.name, attribute.value);
}

bool ReadParam(const TiXmlElement& element, MScriptCommandParam& param) {
    const TiXmlElement* data = FindDataElement(element);
    if (data == nullptr)
        return false;
    param.type = QString::fromStdString(data->ValueStr());
    param.name = FindXmlProperty(*data, kParamNameProperty);
    if (param.name.isEmpty())
        param.name = XmlText(*data, "Name");
    const bool isOut = FindXmlProperty(*data, kDirectionProperty) == QLatin1String(DirectionText(ParamDirection::Out));
    param.direction = isOut ? ParamDirection::Out : ParamDirection::In;
    for (const QString& name : AllowedProperties(PropertyOwner::Variable, param.type)) {
        const QString text = XmlText(*data, name.toLatin1().constData());
        if (!text.isNull())
            StoreProperty(param.properties, PropertyOwner::Variable, param.type, name, text);
    }
    param.items = ReadEnumStrings(*data);
    return !param.name.isEmpty();
}

} // namespace

void AddEnumStrings(TiXmlElement& element, const QStringList& items) {
    TiXmlElement& strings = AddXmlElement(element, "EnumStrings");
    SetXmlNumber(strings, "EnumCount", items.size());
    for (int i = 0; i < items.size(); ++i) {
        TiXmlElement& item = AddXmlElement(strings, "EnumString");
        SetXmlText(item, "Name", items[i]);
        SetXmlNumber(item, "Value", i);
    }
}

QStringList ReadEnumStrings(const TiXmlElement& element) {
    QStringList items;
    const TiXmlElement* strings = element.FirstChildElement("EnumStrings");
    const TiXmlElement* item = strings != nullptr ? strings->FirstChildElement("EnumString") : nullptr;
    for (; item != nullptr; item = item->NextSiblingElement("EnumString"))
        items.append(XmlText(*item, "Name"));
    return items;
}

const TiXmlElement* FindDataElement(const TiXmlElement& objectParam) {
    const TiXmlElement* child = objectParam.FirstChildElement();
    while (child != nullptr && FindDataKind(QString::fromStdString(child->ValueStr())) == nullptr)
        child = child->NextSiblingElement();
    return child;
}

std::unique_ptr<TiXmlElement> MakeParamElement(const MScriptCommandParam& param, int id) {
    const DataKind* kind = FindDataKind(param.type);
    if (kind == nullptr)
        kind = FindDataKindOfCode(KXP_STRING_DATA);
    auto element = std::make_unique<TiXmlElement>("ObjectParam");
    SetXmlNumber(*element, "ID", id);
    SetXmlNumber(*element, "VarType", kind->code);
    element->SetAttribute("ClassName", std::string("I") + kind->element);
    TiXmlElement& data = AddXmlElement(*element, kind->element);
    SetXmlText(data, "Name", param.name);
    SetXmlNumber(data, "ID", id);
    for (const QString& name : AllowedProperties(PropertyOwner::Variable, param.type)) {
        const QString text = FindProperty(param.properties, name);
        if (!text.isNull())
            SetXmlText(data, name.toLatin1().constData(), text);
    }
    if (kind->code == KXP_ENUM_DATA)
        AddEnumStrings(data, param.items);
    TiXmlElement& properties = AddXmlElement(data, "Properties");
    AddXmlProperty(properties, kAcceptVariableProperty, QStringLiteral("true"));
    AddXmlProperty(properties, kDirectionProperty, QLatin1String(DirectionText(param.direction)));
    AddXmlProperty(properties, kParamNameProperty, param.name);
    return element;
}

std::unique_ptr<TiXmlElement> MakeCommandElement(const MScriptCommand& command) {
    auto element = std::make_unique<TiXmlElement>("Command");
    SetXmlText(*element, "Name", command.name);
    SetXmlNumber(*element, "ID", command.id);
    if (command.previousId != MScriptCommand::kNoId)
        SetXmlNumber(*element, "PreviousID", command.previousId);
    element->SetAttribute("Version", "0");
    element->SetAttribute("Status", command.active ? kActive : kDisabled);
    for (const DefaultAttribute& attribute : kGroupDefaults)
        element->SetAttribute(attribute.name, attribute.value);
    for (const QString& name : AllowedProperties(PropertyOwner::Command, QString())) {
        const QString text = FindProperty(command.properties, name);
        if (!text.isNull())
            SetXmlText(*element, name.toLatin1().constData(), text);
    }
    TiXmlElement& params = AddXmlElement(*element, "ObjectParams");
    params.SetAttribute("Version", "0");
    for (int id = 0; id < command.params.size(); ++id)
        params.LinkEndChild(MakeParamElement(command.params[id], id).release());
    AddXmlProperty(AddXmlElement(params, "Properties"), kCommandNameProperty, command.name);
    return element;
}

bool ReadCommandElement(const TiXmlElement& element, MScriptCommand& command) {
    const QString shownName = XmlText(element, "Name");
    if (shownName.isEmpty() || XmlText(element, "Status").isEmpty())
        return false;
    command.name = shownName;
    command.id = XmlNumber(element, "ID", MScriptCommand::kNoId);
    command.previousId = XmlNumber(element, "PreviousID", MScriptCommand::kNoId);
    ReadCommandProperties(element, command);
    const TiXmlElement* params = element.FirstChildElement("ObjectParams");
    if (params == nullptr)
        return true;
    for (const TiXmlElement* child = params->FirstChildElement("ObjectParam"); child != nullptr;
         child = child->NextSiblingElement("ObjectParam")) {
        MScriptCommandParam param;
        if (ReadParam(*child, param))
            command.params.append(param);
    }
    const QString functionName = FindXmlProperty(*params, kCommandNameProperty);
    if (functionName.isEmpty() || functionName == shownName)
        return true;
    command.name = functionName;
    StoreProperty(command.properties, PropertyOwner::Command, QString(), QStringLiteral("Name"), shownName);
    return true;
}
