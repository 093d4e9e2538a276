#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QString>

#include "CommandWatch.h"
#include "DeviceDefinition.h"
#include "DeviceVariables.h"
#include "ObjectParams.h"

namespace stagehost {

/// What a parameter of a command is given.
struct ParameterInput {
    std::string name;                    ///< the parameter's name in the definition, or its number from 0
    std::string text;                    ///< the value in the text form of its type
    std::shared_ptr<HostValue> variable; ///< the variable bound to it, or null
};

/// A command on its way: what the device borrows until the command's context has ended.
struct CommandCall {
    std::int32_t id = 0;
    std::shared_ptr<ObjectParams> params;
    std::unique_ptr<CommandWatch> watch;

    /// Makes the parameters and begins to watch the device. A parameter that is not named keeps its default.
    /// @param wake called, from any thread, when the watch has seen something.   [any host thread]
    CommandCall(const CommandDefinition& command, const std::vector<ParameterInput>& inputs,
                const DeviceVariables& variables, std::function<void()> wake);

    /// The text of "Result" or else of the first parameter that the command writes; empty without one.
    std::string ResultText() const;

private:
    ObjectParam* Result() const; ///< null without one
};

/// The first input that names no parameter of the command, or whose text its type or its limits do not allow; or that
/// the command is disabled.
/// @return empty when all fit, otherwise what is wrong.
QString CheckInputs(const CommandDefinition& command, const std::vector<ParameterInput>& inputs);

} // namespace stagehost
