#pragma once

#include <optional>
#include <string>
#include <vector>

#include "DeviceDefinition.h"
#include "ShowSpec.h"
#include "XmlElement.h"

namespace stagehost {

/// A command as a show keeps it, with the values of its parameters:
///
///     <StoredCommand Name="desk">
///         <Command ID="4" Name="Fade to" ...>
///             <ObjectParams> <ObjectParam> <IntegerData Name="level" Value="50" .../> </ObjectParam> ...
///             </ObjectParams>
///         </Command>
///     </StoredCommand>
///
/// `Command` is the element of the device's definition; the values stand where the definition has the defaults. A
/// parameter that a variable stands for has a child `Binding` with the attribute `Variable`.   [any]
class StoredCommandXml {
public:
    /// Reads the element. @param problem receives what is wrong when there is nothing to give.
    static std::optional<StoredCommandXml> Read(const QString& xml, QString* problem);

    /// Makes one of a command of a device.
    /// @param definition the definition text of the device. @param id of a command in it.
    /// @param parameters must be parameters of the command, given by name or by number from 0.
    /// @return nothing when the text has no such command.
    static std::optional<StoredCommandXml> Make(const std::string& device, const std::string& definition,
                                                std::int32_t id, const std::vector<ActionParameter>& parameters);

    /// The device's name.
    std::string Device() const;
    /// Number, name, parameters and values.
    const CommandDefinition& Command() const { return m_command; }
    /// The variables that stand for parameters: numbers of the parameters with names of variables.
    const std::vector<std::pair<std::size_t, std::string>>& Bindings() const { return m_bindings; }
    /// The same command as an action of the show.
    ActionSpec Action() const;
    QString Print() const { return m_root.Print(); }

private:
    explicit StoredCommandXml(XmlElement root);
    QString Take();

    XmlElement m_root;
    CommandDefinition m_command;
    std::vector<std::pair<std::size_t, std::string>> m_bindings;
};

} // namespace stagehost
