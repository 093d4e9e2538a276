#include "CommandCall.h"

#include <algorithm>

#include "BorderText.h"
#include "NearNames.h"
#include "ValueFactory.h"

namespace stagehost {

namespace {

constexpr const char* kResult = "Result";

const ValueSpec* FindParameter(const CommandDefinition& command, const std::string& name) {
    const auto& all = command.parameters;
    auto found = std::find_if(all.begin(), all.end(), [&](const auto& parameter) { return parameter.name == name; });
    if (found == all.end()) {
        std::size_t index = 0;
        found = std::find_if(all.begin(), all.end(), [&](const auto&) { return std::to_string(index++) == name; });
    }
    return found == all.end() ? nullptr : &*found;
}

const ParameterInput* FindInput(const CommandDefinition& command, const ValueSpec& parameter,
                                const std::vector<ParameterInput>& inputs) {
    const auto found = std::find_if(inputs.rbegin(), inputs.rend(), [&](const auto& input) {
        return FindParameter(command, input.name) == &parameter;
    });
    return found == inputs.rend() ? nullptr : &*found;
}

/// The parameters that somebody may give.
QStringList InputNames(const CommandDefinition& command) {
    QStringList names;
    for (const auto& parameter : command.parameters) {
        if (!IsOutParameter(parameter))
            names += FromBorderText(parameter.name);
    }
    return names;
}

bool IsWritten(const ObjectParam& param) {
    const auto properties = param.Own().Properties();
    const auto direction = properties.find(kDirectionProperty);
    return direction != properties.end() && direction->second == kDirectionOut;
}

} // namespace

CommandCall::CommandCall(const CommandDefinition& command, const std::vector<ParameterInput>& inputs,
                         const DeviceVariables& variables, std::function<void()> wake)
    : id(command.id)
    , params(std::make_shared<ObjectParams>(command.properties))
    , watch(std::make_unique<CommandWatch>(variables.FindState("Status"), variables.FindState("Error"),
                                           std::move(wake))) {
    for (const auto& parameter : command.parameters) {
        std::shared_ptr<HostValue> own = MakeValue(parameter);
        const ParameterInput* input = FindInput(command, parameter, inputs);
        if (input != nullptr)
            own->SetText(input->text);
        params->Add(std::move(own), input == nullptr ? nullptr : input->variable);
    }
    if (ObjectParam* result = Result())
        watch->LookAtResult(result->Effective());
}

std::string CommandCall::ResultText() const {
    const ObjectParam* result = Result();
    return result != nullptr ? result->Effective().Text() : std::string();
}

ObjectParam* CommandCall::Result() const {
    const auto& all = params->Params();
    auto found = std::find_if(all.begin(), all.end(), [](const auto& param) { return param->Own().Name() == kResult; });
    if (found == all.end())
        found = std::find_if(all.begin(), all.end(), [](const auto& param) { return IsWritten(*param); });
    return found == all.end() ? nullptr : found->get();
}

QString CheckInputs(const CommandDefinition& command, const std::vector<ParameterInput>& inputs) {
    if (command.status == "Disabled")
        return QStringLiteral("the command \"%1\" is disabled").arg(FromBorderText(command.name));
    for (const auto& input : inputs) {
        const ValueSpec* parameter = FindParameter(command, input.name);
        if (parameter == nullptr)
            return QStringLiteral("the command \"%1\" has no parameter \"%2\"")
                       .arg(FromBorderText(command.name), FromBorderText(input.name)) +
                   NamesInstead(FromBorderText(input.name), InputNames(command));
        const std::string complaint = input.variable ? std::string() : ComplaintAbout(*parameter, input.text);
        if (!complaint.empty())
            return QStringLiteral("the parameter \"%1\" %2").arg(FromBorderText(input.name), FromBorderText(complaint));
    }
    return {};
}

} // namespace stagehost
