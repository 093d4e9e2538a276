#include "DeviceVariables.h"

#include <algorithm>
#include <cstring>
#include <tuple>

#include "DefinitionReader.h"
#include "ValueFactory.h"

namespace stagehost {

namespace {

/// Whether two definitions of a variable differ in anything but its number.
bool SameSpec(const ValueSpec& left, const ValueSpec& right) {
    const auto parts = [](const ValueSpec& spec) {
        return std::tie(spec.type, spec.name, spec.text, spec.minimum, spec.maximum, spec.maxLength, spec.precision,
                        spec.timeCodeType, spec.items, spec.properties);
    };
    return parts(left) == parts(right);
}

} // namespace

DeviceVariables::DeviceVariables(std::string deviceName, VariableManager& manager)
    : deviceName_(std::move(deviceName))
    , manager_(manager)
    , definition_(std::make_shared<DeviceDefinition>()) {}

DeviceVariables::~DeviceVariables() {
    for (const auto& variable : order_)
        manager_.Remove(variable->Name());
}

KXPCode DeviceVariables::QueryInterface(const char* name, void** out) {
    if (name == nullptr || out == nullptr)
        return KXP_BAD_INTERFACE_ARG;
    const bool offered = std::strcmp(name, "IMInterface") == 0 || std::strcmp(name, "IDeviceVariables") == 0;
    *out = offered ? this : nullptr;
    return offered ? KXP_OK : KXP_NO_INTERFACE;
}

KXPCode DeviceVariables::Release() {
    return KXP_OK;
}

IData* DeviceVariables::GetVariable(const char* name) {
    const auto variable = name == nullptr ? nullptr : Find(name);
    return variable ? variable->Face() : nullptr;
}

std::uint32_t DeviceVariables::SetDefinition(const char* xml) {
    DefinitionReader reader;
    const auto definition = reader.Read(xml);
    const std::lock_guard<std::mutex> hold(lock_);
    lastError_ = reader.Error();
    if (!definition)
        return 0;
    order_ = Adopt(*definition);
    definition_ = std::make_shared<DeviceDefinition>(*definition);
    text_ = xml;
    return 1;
}

std::shared_ptr<HostValue> DeviceVariables::Find(const std::string& name) const {
    const std::lock_guard<std::mutex> hold(lock_);
    const auto found = variables_.find(name);
    return found == variables_.end() ? nullptr : found->second;
}

std::shared_ptr<HostValue> DeviceVariables::FindState(const std::string& name) const {
    constexpr std::int32_t kFirstOwnCommand = 0;
    const auto definition = Definition();
    const CommandDefinition* own = definition->FindCommandOfId(kFirstOwnCommand);
    return own != nullptr && own->status == "Hidden" ? nullptr : Find(name);
}

std::shared_ptr<const DeviceDefinition> DeviceVariables::Definition() const {
    const std::lock_guard<std::mutex> hold(lock_);
    return definition_;
}

std::string DeviceVariables::DefinitionText() const {
    const std::lock_guard<std::mutex> hold(lock_);
    return text_;
}

std::vector<std::shared_ptr<HostValue>> DeviceVariables::All() const {
    const std::lock_guard<std::mutex> hold(lock_);
    return order_;
}

bool DeviceVariables::IsDefinedBy(const char* xml) const {
    const std::lock_guard<std::mutex> hold(lock_);
    return text_ == xml;
}

std::string DeviceVariables::LastError() const {
    const std::lock_guard<std::mutex> hold(lock_);
    return lastError_;
}

DeviceVariables::Values DeviceVariables::Adopt(const DeviceDefinition& definition) {
    Values order;
    for (const auto& spec : definition.variables)
        order.push_back(AdoptVariable(spec));
    for (const auto& former : order_) {
        if (std::find(order.begin(), order.end(), former) != order.end())
            continue;
        retired_.push_back(former);
        const std::string name = former->Name().substr(deviceName_.size() + 1);
        if (variables_[name] == former) {
            manager_.Remove(former->Name());
            variables_.erase(name);
        }
    }
    return order;
}

std::shared_ptr<HostValue> DeviceVariables::AdoptVariable(const ValueSpec& spec) {
    auto& place = variables_[spec.name];
    if (place && place->Type() == spec.type) {
        const ValueSpec* former = FormerSpec(spec.name);
        if (former == nullptr || !SameSpec(*former, spec))
            place->Configure(spec);
        return place;
    }
    const std::string fullName = deviceName_ + "." + spec.name;
    if (place)
        manager_.Remove(fullName);
    place = MakeValue(spec);
    place->SetIdentity(fullName, spec.instanceId);
    manager_.Add(place);
    return place;
}

const ValueSpec* DeviceVariables::FormerSpec(const std::string& name) const {
    const auto& former = definition_->variables;
    const auto found = std::find_if(former.begin(), former.end(), [&](const auto& spec) { return spec.name == name; });
    return found == former.end() ? nullptr : &*found;
}

} // namespace stagehost
