#pragma once

#include <optional>
#include <string>

#include <QXmlStreamReader>

#include "DeviceDefinition.h"

namespace stagehost {

/// Reads a device definition text. Used once for one text.
///
/// The text is UTF-8 or, when its bytes are not, Latin-1. Elements and attributes that are not known are skipped. It is
/// refused as a whole when it is no XML, when its root is not `Device`, when a command has no number or the number of
/// another, when a variable has no name or the name of another, and when a number is none.   [any]
class DefinitionReader {
public:
    /// @param xml the text; null is refused.
    /// @return nothing when the text is refused; Error tells why.
    std::optional<DeviceDefinition> Read(const char* xml);

    /// Why the text was refused, with its line and column.
    const std::string& Error() const { return m_error; }

private:
    void ReadDevice(DeviceDefinition& device);
    void ReadCommands(DeviceDefinition& device);
    void ReadCommand(CommandDefinition& command);
    void ReadParameters(CommandDefinition& command);
    void ReadParameter(CommandDefinition& command);
    void ReadVariables(DeviceDefinition& device);
    ValueSpec ReadValue(std::uint32_t type, const char* contentAttribute);
    void ReadValueChildren(ValueSpec& value);
    void ReadItems(ValueSpec& value);
    void ReadProperties(std::map<std::string, std::string>& properties);

    std::string Text(const char* attribute) const;
    std::optional<double> Number(const char* attribute);
    std::int32_t WholeNumber(const char* attribute, std::int32_t missing);
    void Refuse(const QString& reason);

    QXmlStreamReader m_xml;
    std::string m_error;
};

} // namespace stagehost
