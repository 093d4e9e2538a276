#pragma once

#include <mutex>

#include "CommandWaiter.h"
#include "DeviceDoor.h"
#include "ShowObject.h"
#include "Strand.h"

namespace stagehost {

/// A device as an object of the show: its variables are its properties, its commands its actions.
///
/// Commands reach the device in the order in which they were asked for; each is answered when it is over, so that one
/// that takes long holds up no other. It may outlive the device's driver: requests under way hold it.
class DeviceObject final : public ShowObject, public std::enable_shared_from_this<DeviceObject> {
public:
    /// @param manager, pool, waiter must outlive the object.
    DeviceObject(std::string name, Conduct conduct, IKXPDevice* device, std::shared_ptr<DeviceVariables> variables,
                 VariableManager& manager, WorkerPool& pool, CommandWaiter& waiter);

    /// Takes no more commands and answers 75 to those that wait.   [host main]
    void Close();
    /// Whether no call is inside the device.   [any]
    bool IsEmpty() const { return m_door.IsEmpty(); }
    /// Gives up what the device borrowed; once it has been released.   [host main]
    void Forget();

    /// "Running", and the variables without the device's name, which can be set.
    std::vector<ObjectProperty> Properties() const override;
    std::optional<std::int32_t> PropertyAsInt(const std::string& property) const override;
    KXPCode SetProperty(const std::string& property, const std::string& value) override;
    KXPCode SetPropertyAsInt(const std::string& property, std::int32_t value) override;
    /// A command by its name or number. Failures: 70 no such command, 71 parameters that it does not have or take, 73
    /// refused or ended with an error, 74 not started, 75 ends.
    void Perform(const std::string& action, const Parameters& parameters, const Answer& answer) override;
    /// The definition text.
    std::optional<std::string> OwnText() const override;

private:
    void Issue(const std::string& action, const Parameters& parameters, const Answer& answer);
    KXPCode ReadInputs(const Parameters& parameters, std::vector<ParameterInput>& inputs) const;
    void Send(const CommandDefinition& command, const std::vector<ParameterInput>& inputs, const Answer& answer);
    void Keep(const std::shared_ptr<CommandCall>& call);

    mutable DeviceDoor m_door;
    const std::shared_ptr<DeviceVariables> m_variables;
    VariableManager& m_manager;
    Strand m_strand;
    CommandWaiter& m_waiter;
    std::mutex m_lock;                                 ///< guards m_calls
    std::vector<std::shared_ptr<CommandCall>> m_calls; ///< those that the device may still use
};

} // namespace stagehost
