#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "DeviceDefinition.h"
#include "IKXPDevice.h"
#include "VariableManager.h"

namespace stagehost {

/// The variables and commands of one device, as its definition tells them.
///
/// A variable that the next definition has again, with the same name and type, stays the same object with the same
/// number, and keeps its content unless the definition changed it. Variables that are gone are kept in memory until the
/// device's end, since commands that were accepted before may still write to them.
class DeviceVariables final : public IDeviceVariables {
public:
    /// @param manager makes the variables known under "device.variable"; must outlive this object.
    DeviceVariables(std::string deviceName, VariableManager& manager);
    ~DeviceVariables();
    DeviceVariables(const DeviceVariables&) = delete;
    DeviceVariables& operator=(const DeviceVariables&) = delete;

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override;
    IData* GetVariable(const char* name) override;
    std::uint32_t SetDefinition(const char* xml) override;

    /// The variable of that name without the device's, or null.   [any]
    std::shared_ptr<HostValue> Find(const std::string& name) const;

    /// "Status" or "Error" as the device itself keeps them; null when its driver has removed what the device has by
    /// itself: a variable of that name is the driver's own then.   [any]
    std::shared_ptr<HostValue> FindState(const std::string& name) const;

    /// The definition in force; an empty one before the first. Never changes once given.   [any]
    std::shared_ptr<const DeviceDefinition> Definition() const;

    /// The text of the definition in force; empty before the first.   [any]
    std::string DefinitionText() const;

    /// The variables in the order of the definition.   [any]
    std::vector<std::shared_ptr<HostValue>> All() const;

    /// Whether that text is the one in force.   [any]
    bool IsDefinedBy(const char* xml) const;

    /// Why the last SetDefinition was refused; empty when it was accepted.   [any]
    std::string LastError() const;

    /// Values by name that somebody has given the variables since their definition, for GiveBack; the module's own,
    /// such as "Status", are not among them.   [any]
    std::map<std::string, std::string> Kept() const;
    /// Gives variables these values again; those that a definition of another kind does not take keep their own. [any]
    void GiveBack(const std::map<std::string, std::string>& values);

private:
    using Values = std::vector<std::shared_ptr<HostValue>>;

    Values Adopt(const DeviceDefinition& definition);
    std::shared_ptr<HostValue> AdoptVariable(const ValueSpec& spec);
    const ValueSpec* FormerSpec(const std::string& name) const;

    const std::string m_deviceName;
    VariableManager& m_manager;
    mutable std::mutex m_lock; ///< guards the fields below; only SetDefinition, on the main thread, changes them
    std::unordered_map<std::string, std::shared_ptr<HostValue>> m_variables; ///< by name without the device's
    Values m_order;
    Values m_retired;
    std::shared_ptr<const DeviceDefinition> m_definition;
    std::string m_text;
    std::string m_lastError;
};

} // namespace stagehost
