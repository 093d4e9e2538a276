#include "DefinitionReader.h"

#include <algorithm>
#include <cmath>

#include "BorderText.h"
#include "DataTypes.h"
#include "NumberText.h"

namespace stagehost {

namespace {

QString Latin(const std::string& text) {
    return FromBorderText(text);
}

} // namespace

std::optional<DeviceDefinition> DefinitionReader::Read(const char* xml) {
    if (xml == nullptr) {
        error_ = "no definition text";
        return std::nullopt;
    }
    xml_.addData(FromOutsideText(xml));
    DeviceDefinition device;
    if (xml_.readNextStartElement() && xml_.name() == QLatin1String("Device"))
        ReadDevice(device);
    else if (!xml_.hasError())
        Refuse(QStringLiteral("the root element is not Device"));
    while (!xml_.atEnd() && !xml_.hasError())
        xml_.readNext();
    if (!xml_.hasError())
        return device;
    error_ = "line " + std::to_string(xml_.lineNumber()) + ", column " + std::to_string(xml_.columnNumber()) + ": " +
             ToBorderText(xml_.errorString());
    return std::nullopt;
}

void DefinitionReader::ReadDevice(DeviceDefinition& device) {
    device.name = Text("Name");
    while (xml_.readNextStartElement()) {
        if (xml_.name() == QLatin1String("Commands"))
            ReadCommands(device);
        else if (xml_.name() == QLatin1String("Variables"))
            ReadVariables(device);
        else
            xml_.skipCurrentElement();
    }
}

void DefinitionReader::ReadCommands(DeviceDefinition& device) {
    while (xml_.readNextStartElement()) {
        if (xml_.name() != QLatin1String("Command")) {
            xml_.skipCurrentElement();
            continue;
        }
        CommandDefinition command;
        ReadCommand(command);
        const bool known = std::any_of(device.commands.begin(), device.commands.end(),
                                       [&](const auto& other) { return other.id == command.id; });
        if (known)
            Refuse(QStringLiteral("two commands have the ID %1").arg(command.id));
        device.commands.push_back(std::move(command));
    }
}

void DefinitionReader::ReadCommand(CommandDefinition& command) {
    if (Text("ID").empty())
        Refuse(QStringLiteral("a Command has no ID"));
    command.id = WholeNumber("ID", 0);
    command.name = Text("Name");
    command.status = Text("Status");
    while (xml_.readNextStartElement()) {
        if (xml_.name() == QLatin1String("ObjectParams"))
            ReadParameters(command);
        else
            xml_.skipCurrentElement();
    }
}

void DefinitionReader::ReadParameters(CommandDefinition& command) {
    while (xml_.readNextStartElement()) {
        if (xml_.name() == QLatin1String("ObjectParam"))
            ReadParameter(command);
        else if (xml_.name() == QLatin1String("Properties"))
            ReadProperties(command.properties);
        else
            xml_.skipCurrentElement();
    }
}

void DefinitionReader::ReadParameter(CommandDefinition& command) {
    std::optional<ValueSpec> parameter;
    std::map<std::string, std::string> properties;
    while (xml_.readNextStartElement()) {
        const DataType* type = FindDataTypeOfElement(xml_.name().toString().toStdString());
        if (type != nullptr && !parameter)
            parameter = ReadValue(type->code, type->contentAttribute);
        else if (xml_.name() == QLatin1String("Properties"))
            ReadProperties(properties);
        else
            xml_.skipCurrentElement();
    }
    if (!parameter && !xml_.hasError())
        Refuse(QStringLiteral("an ObjectParam of the command \"%1\" has no value of a known type")
                   .arg(Latin(command.name)));
    if (!parameter)
        return;
    parameter->properties.merge(properties);
    command.parameters.push_back(std::move(*parameter));
}

void DefinitionReader::ReadVariables(DeviceDefinition& device) {
    while (xml_.readNextStartElement()) {
        const DataType* type = FindDataTypeOfElement(xml_.name().toString().toStdString());
        if (type == nullptr) {
            xml_.skipCurrentElement();
            continue;
        }
        ValueSpec variable = ReadValue(type->code, type->contentAttribute);
        const bool known = std::any_of(device.variables.begin(), device.variables.end(),
                                       [&](const auto& other) { return other.name == variable.name; });
        if (variable.name.empty())
            Refuse(QStringLiteral("a variable has no Name"));
        else if (known)
            Refuse(QStringLiteral("two variables have the name \"%1\"").arg(Latin(variable.name)));
        device.variables.push_back(std::move(variable));
    }
}

ValueSpec DefinitionReader::ReadValue(std::uint32_t type, const char* contentAttribute) {
    ValueSpec value;
    value.type = type;
    value.name = Text("Name");
    value.id = WholeNumber("ID", 0);
    value.instanceId = static_cast<std::uint32_t>(std::max(0, WholeNumber("InstanceID", 0)));
    value.text = Text(contentAttribute);
    value.minimum = Number("MinValue");
    value.maximum = Number("MaxValue");
    value.maxLength = WholeNumber("MaxLength", value.maxLength);
    value.precision = WholeNumber("Precision", value.precision);
    value.timeCodeType = WholeNumber("TimeCodeType", value.timeCodeType);
    ReadValueChildren(value);
    return value;
}

void DefinitionReader::ReadValueChildren(ValueSpec& value) {
    while (xml_.readNextStartElement()) {
        if (xml_.name() == QLatin1String("EnumStrings"))
            ReadItems(value);
        else if (xml_.name() == QLatin1String("Properties"))
            ReadProperties(value.properties);
        else
            xml_.skipCurrentElement();
    }
}

void DefinitionReader::ReadItems(ValueSpec& value) {
    std::vector<std::pair<std::int32_t, std::string>> items;
    while (xml_.readNextStartElement()) {
        if (xml_.name() == QLatin1String("EnumString"))
            items.emplace_back(WholeNumber("Value", static_cast<std::int32_t>(items.size())), Text("Name"));
        xml_.skipCurrentElement();
    }
    std::stable_sort(items.begin(), items.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    for (auto& item : items)
        value.items.push_back(std::move(item.second));
}

void DefinitionReader::ReadProperties(std::map<std::string, std::string>& properties) {
    while (xml_.readNextStartElement()) {
        if (xml_.name() == QLatin1String("Property"))
            properties[Text("Name")] = Text("Value");
        xml_.skipCurrentElement();
    }
}

std::string DefinitionReader::Text(const char* attribute) const {
    return ToBorderText(xml_.attributes().value(QLatin1String(attribute)).toString());
}

std::optional<double> DefinitionReader::Number(const char* attribute) {
    const std::string text = Text(attribute);
    if (text.empty())
        return std::nullopt;
    const auto number = ParseNumber(text);
    if (!number)
        Refuse(QStringLiteral("%1=\"%2\" is not a number").arg(QLatin1String(attribute), Latin(text)));
    return number;
}

std::int32_t DefinitionReader::WholeNumber(const char* attribute, std::int32_t missing) {
    const auto number = Number(attribute);
    if (number && std::trunc(*number) != *number)
        Refuse(QStringLiteral("%1=\"%2\" is not a whole number").arg(QLatin1String(attribute), Latin(Text(attribute))));
    return number ? RoundToInt(*number) : missing;
}

void DefinitionReader::Refuse(const QString& reason) {
    if (!xml_.hasError())
        xml_.raiseError(reason);
}

} // namespace stagehost
