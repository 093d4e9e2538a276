#include "DeviceObject.h"

#include <algorithm>

#include "BorderText.h"
#include "HostCodes.h"

namespace stagehost {

namespace {

constexpr const char* kRunning = "Running";

} // namespace

DeviceObject::DeviceObject(std::string name, Conduct conduct, IKXPDevice* device,
                           std::shared_ptr<DeviceVariables> variables, VariableManager& manager, WorkerPool& pool,
                           CommandWaiter& waiter)
    : ShowObject(ObjectKind::Device, std::move(name), conduct)
    , door_(device)
    , variables_(std::move(variables))
    , manager_(manager)
    , strand_(pool)
    , waiter_(waiter) {}

void DeviceObject::Close() {
    door_.Close();
    waiter_.EndWaiting(this);
}

void DeviceObject::Forget() {
    const std::lock_guard<std::mutex> hold(lock_);
    calls_.clear();
}

std::vector<ObjectProperty> DeviceObject::Properties() const {
    bool running = false;
    door_.Enter([&](IKXPDevice& device) { running = device.IsRunning() == KXP_OK; });
    std::vector<ObjectProperty> all{{kRunning, running ? "true" : "false"}};
    for (const auto& variable : variables_->All())
        all.push_back({variable->Name().substr(Name().size() + 1), variable->Text()});
    return all;
}

std::optional<std::int32_t> DeviceObject::PropertyAsInt(const std::string& property) const {
    const auto variable = variables_->Find(property);
    return variable ? std::optional(variable->Int()) : ShowObject::PropertyAsInt(property);
}

KXPCode DeviceObject::SetProperty(const std::string& property, const std::string& value) {
    const auto variable = variables_->Find(property);
    if (!variable)
        return ShowObject::SetProperty(property, value);
    return variable->SetText(value) ? KXP_OK : KXPCode{kBadValue};
}

KXPCode DeviceObject::SetPropertyAsInt(const std::string& property, std::int32_t value) {
    const auto variable = variables_->Find(property);
    if (!variable)
        return ShowObject::SetPropertyAsInt(property, value);
    return variable->SetInt(value) ? KXP_OK : KXPCode{kBadValue};
}

void DeviceObject::Perform(const std::string& action, const Parameters& parameters, const Answer& answer) {
    strand_.Post([self = shared_from_this(), action, parameters, answer] { self->Issue(action, parameters, answer); });
}

std::optional<std::string> DeviceObject::OwnText() const {
    return variables_->DefinitionText();
}

void DeviceObject::Issue(const std::string& action, const Parameters& parameters, const Answer& answer) {
    const auto definition = variables_->Definition();
    const CommandDefinition* command = definition->FindCommand(action);
    if (command == nullptr)
        return answer({kNoSuchAction});
    std::vector<ParameterInput> inputs;
    const KXPCode read = ReadInputs(parameters, inputs);
    if (read != KXP_OK)
        return answer({read});
    const QString problem = CheckInputs(*command, inputs);
    if (!problem.isEmpty())
        return answer({kBadParameters, {}, ToBorderText(problem)});
    Send(*command, inputs, answer);
}

KXPCode DeviceObject::ReadInputs(const Parameters& parameters, std::vector<ParameterInput>& inputs) const {
    for (const auto& parameter : parameters.List()) {
        ParameterInput input{parameter.name, parameter.text, {}};
        if (parameter.isVariable) {
            input.variable = manager_.Find(parameter.text);
            if (!input.variable)
                return KXP_VARIABLE_NOT_FOUND;
        }
        inputs.push_back(std::move(input));
    }
    return KXP_OK;
}

void DeviceObject::Send(const CommandDefinition& command, const std::vector<ParameterInput>& inputs,
                        const Answer& answer) {
    const auto call = std::make_shared<CommandCall>(command, inputs, *variables_, waiter_.Waker());
    Keep(call);
    bool running = false;
    KXPCode code = KXP_OK;
    const bool entered = door_.Enter([&](IKXPDevice& device) {
        running = device.IsRunning() == KXP_OK;
        if (running)
            code = device.ExecuteCommand(call->id, call->params.get(), call->watch->Context());
    });
    if (!entered)
        return answer({kEnding});
    if (!running)
        return answer({kNotRunning});
    if (code != KXP_OK)
        return answer({kActionFailed, {}, "refused with code " + std::to_string(code)});
    waiter_.Add(call, this, answer);
    if (door_.IsClosed()) // since the command was accepted: Close may have ended the waiting before this one was added
        waiter_.EndWaiting(this);
}

/// Keeps what the device borrows, and lets go of what it has given back.
void DeviceObject::Keep(const std::shared_ptr<CommandCall>& call) {
    const std::lock_guard<std::mutex> hold(lock_);
    calls_.erase(std::remove_if(calls_.begin(), calls_.end(),
                                [](const auto& other) {
                                    return other.use_count() == 1 &&
                                           other->watch->Context()->GetState() == ExecContext::kEnded;
                                }),
                 calls_.end());
    calls_.push_back(call);
}

} // namespace stagehost
