#include "DefinitionReader.h"

#include <algorithm>
#include <cmath>

#include "BorderText.h"
#include "DataTypes.h"
#include "PlainNumbers.h"

namespace stagehost {

namespace {

QString Latin(const std::string& text) {
    return FromBorderText(text);
}

} // namespace

std::optional<DeviceDefinition> DefinitionReader::Read(const char* xml) {
    if (xml == nullptr) {
        m_error = "no definition text";
        return std::nullopt;
    }
    m_xml.addData(FromOutsideText(xml));
    DeviceDefinition device;
    if (m_xml.readNextStartElement() && m_xml.name() == QLatin1String("Device"))
        ReadDevice(device);
    else if (!m_xml.hasError())
        Refuse(QStringLiteral("the root element is not Device"));
    while (!m_xml.atEnd() && !m_xml.hasError())
        m_xml.readNext();
    if (!m_xml.hasError())
        return device;
    m_error = "line " + std::to_string(m_xml.lineNumber()) + ", column " + std::to_string(m_xml.columnNumber()) + ": " +
              ToBorderText(m_xml.errorString());
    return std::nullopt;
}

void DefinitionReader::ReadDevice(DeviceDefinition& device) {
    device.name = Text("Name");
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() == QLatin1String("Commands"))
            ReadCommands(device);
        else if (m_xml.name() == QLatin1String("Variables"))
            ReadVariables(device);
        else
            m_xml.skipCurrentElement();
    }
}

void DefinitionReader::ReadCommands(DeviceDefinition& device) {
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() != QLatin1String("Command")) {
            m_xml.skipCurrentElement();
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
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() == QLatin1String("ObjectParams"))
            ReadParameters(command);
        else
            m_xml.skipCurrentElement();
    }
}

void DefinitionReader::ReadParameters(CommandDefinition& command) {
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() == QLatin1String("ObjectParam"))
            ReadParameter(command);
        else if (m_xml.name() == QLatin1String("Properties"))
            ReadProperties(command.properties);
        else
            m_xml.skipCurrentElement();
    }
}

void DefinitionReader::ReadParameter(CommandDefinition& command) {
    std::optional<ValueSpec> parameter;
    std::map<std::string, std::string> properties;
    while (m_xml.readNextStartElement()) {
        const DataType* type = FindDataTypeOfElement(m_xml.name().toString().toStdString());
        if (type != nullptr && !parameter)
            parameter = ReadValue(type->code, type->contentAttribute);
        else if (m_xml.name() == QLatin1String("Properties"))
            ReadProperties(properties);
        else
            m_xml.skipCurrentElement();
    }
    if (!parameter && !m_xml.hasError())
        Refuse(QStringLiteral("an ObjectParam of the command \"%1\" has no value of a known type")
                   .arg(Latin(command.name)));
    if (!parameter)
        return;
    parameter->properties.merge(properties);
    command.parameters.push_back(std::move(*parameter));
}

void DefinitionReader::ReadVariables(DeviceDefinition& device) {
    while (m_xml.readNextStartElement()) {
        const DataType* type = FindDataTypeOfElement(m_xml.name().toString().toStdString());
        if (type == nullptr) {
            m_xml.skipCurrentElement();
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
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() == QLatin1String("EnumStrings"))
            ReadItems(value);
        else if (m_xml.name() == QLatin1String("Properties"))
            ReadProperties(value.properties);
        else
            m_xml.skipCurrentElement();
    }
}

void DefinitionReader::ReadItems(ValueSpec& value) {
    std::vector<std::pair<std::int32_t, std::string>> items;
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() == QLatin1String("EnumString"))
            items.emplace_back(WholeNumber("Value", static_cast<std::int32_t>(items.size())), Text("Name"));
        m_xml.skipCurrentElement();
    }
    std::stable_sort(items.begin(), items.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    for (auto& item : items)
        value.items.push_back(std::move(item.second));
}

void DefinitionReader::ReadProperties(std::map<std::string, std::string>& properties) {
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() == QLatin1String("Property"))
            properties[Text("Name")] = Text("Value");
        m_xml.skipCurrentElement();
    }
}

std::string DefinitionReader::Text(const char* attribute) const {
    return ToBorderText(m_xml.attributes().value(QLatin1String(attribute)).toString());
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
    if (!m_xml.hasError())
        m_xml.raiseError(reason);
}

} // namespace stagehost
