#include "DeviceDefinition.h"

#include <algorithm>

namespace stagehost {

const CommandDefinition* DeviceDefinition::FindCommand(const std::string& nameOrId) const {
    const auto find = [this](auto matches) {
        const auto found = std::find_if(commands.begin(), commands.end(), matches);
        return found == commands.end() ? nullptr : &*found;
    };
    if (const auto* byName = find([&](const auto& command) { return command.name == nameOrId; }))
        return byName;
    return find([&](const auto& command) { return std::to_string(command.id) == nameOrId; });
}

const CommandDefinition* DeviceDefinition::FindCommandOfId(std::int32_t id) const {
    const auto found =
        std::find_if(commands.begin(), commands.end(), [id](const auto& command) { return command.id == id; });
    return found == commands.end() ? nullptr : &*found;
}

std::string CommandDefinition::FunctionName() const {
    const auto property = properties.find(kFunctionProperty);
    return property == properties.end() ? std::string() : property->second;
}

bool IsOutParameter(const ValueSpec& parameter) {
    const auto direction = parameter.properties.find(kDirectionProperty);
    return direction != parameter.properties.end() && direction->second == kDirectionOut;
}

} // namespace stagehost
