#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ValueSpec.h"

namespace stagehost {

/// One command of a device, as its definition tells it.
struct CommandDefinition {
    std::int32_t id = 0;
    std::string name;
    std::string status; ///< "Active", "Disabled" or "Hidden"
    std::vector<ValueSpec> parameters;
    std::map<std::string, std::string> properties;

    /// The script's function that the command calls; empty for a command of the device itself.
    std::string FunctionName() const;
};

/// What a device can do and which variables it has: the definition text taken apart. All texts are Latin-1.
struct DeviceDefinition {
    std::string name;
    std::vector<CommandDefinition> commands;
    std::vector<ValueSpec> variables;

    /// A command by its name or, when no command has that name, by its id in decimal; null when there is none.
    const CommandDefinition* FindCommand(const std::string& nameOrId) const;

    /// A command by its id alone; null when there is none.
    const CommandDefinition* FindCommandOfId(std::int32_t id) const;
};

/// Property that tells whether a command reads or writes a parameter: "mddIn" or "mddOut".
inline constexpr const char* kDirectionProperty = "DataDescriptor::VarDirection";
inline constexpr const char* kDirectionOut = "mddOut";

/// Property of a command that keeps the name of its function, however the command is called.
inline constexpr const char* kFunctionProperty = "KXPProp::ScriptUserCommandName";

/// Whether a command writes this parameter.
bool IsOutParameter(const ValueSpec& parameter);

} // namespace stagehost
