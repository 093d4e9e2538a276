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
    , m_door(device)
    , m_variables(std::move(variables))
    , m_manager(manager)
    , m_strand(pool)
    , m_waiter(waiter) {}

void DeviceObject::Close() {
    m_door.Close();
    m_waiter.EndWaiting(this);
}

void DeviceObject::Forget() {
    const std::lock_guard<std::mutex> hold(m_lock);
    m_calls.clear();
}

std::vector<ObjectProperty> DeviceObject::Properties() const {
    bool running = false;
    m_door.Enter([&](IKXPDevice& device) { running = device.IsRunning() == KXP_OK; });
    std::vector<ObjectProperty> all{{kRunning, running ? "true" : "false"}};
    for (const auto& variable : m_variables->All())
        all.push_back({variable->Name().substr(Name().size() + 1), variable->Text()});
    return all;
}

std::optional<std::int32_t> DeviceObject::PropertyAsInt(const std::string& property) const {
    const auto variable = m_variables->Find(property);
    return variable ? std::optional(variable->Int()) : ShowObject::PropertyAsInt(property);
}

KXPCode DeviceObject::SetProperty(const std::string& property, const std::string& value) {
    const auto variable = m_variables->Find(property);
    if (!variable)
        return ShowObject::SetProperty(property, value);
    return variable->SetText(value) ? KXP_OK : KXPCode{kBadValue};
}

KXPCode DeviceObject::SetPropertyAsInt(const std::string& property, std::int32_t value) {
    const auto variable = m_variables->Find(property);
    if (!variable)
        return ShowObject::SetPropertyAsInt(property, value);
    return variable->SetInt(value) ? KXP_OK : KXPCode{kBadValue};
}

void DeviceObject::Perform(const std::string& action, const Parameters& parameters, const Answer& answer) {
    m_strand.Post([self = shared_from_this(), action, parameters, answer] { self->Issue(action, parameters, answer); });
}

std::optional<std::string> DeviceObject::OwnText() const {
    return m_variables->DefinitionText();
}

void DeviceObject::Issue(const std::string& action, const Parameters& parameters, const Answer& answer) {
    const auto definition = m_variables->Definition();
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
            input.variable = m_manager.Find(parameter.text);
            if (!input.variable)
                return KXP_VARIABLE_NOT_FOUND;
        }
        inputs.push_back(std::move(input));
    }
    return KXP_OK;
}

void DeviceObject::Send(const CommandDefinition& command, const std::vector<ParameterInput>& inputs,
                        const Answer& answer) {
    const auto call = std::make_shared<CommandCall>(command, inputs, *m_variables, m_waiter.Waker());
    Keep(call);
    bool running = false;
    KXPCode code = KXP_OK;
    const bool entered = m_door.Enter([&](IKXPDevice& device) {
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
    m_waiter.Add(call, this, answer);
    if (m_door.IsClosed()) // since the command was accepted: Close may have ended the waiting before this one was added
        m_waiter.EndWaiting(this);
}

/// Keeps what the device borrows, and lets go of what it has given back.
void DeviceObject::Keep(const std::shared_ptr<CommandCall>& call) {
    const std::lock_guard<std::mutex> hold(m_lock);
    m_calls.erase(std::remove_if(m_calls.begin(), m_calls.end(),
                                 [](const auto& other) {
                                     return other.use_count() == 1 &&
                                            other->watch->Context()->GetState() == ExecContext::kEnded;
                                 }),
                  m_calls.end());
    m_calls.push_back(call);
}

} // namespace stagehost
