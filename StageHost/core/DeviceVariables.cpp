#include "DeviceVariables.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <tuple>

#include "DefinitionReader.h"
#include "ValueFactory.h"

namespace stagehost {

namespace {

constexpr const char* kOfModule[] = {"Status", "Error", "CurrentScriptFileName", "CurrentScriptText",
                                     "ScriptFunctions"};

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
    : m_deviceName(std::move(deviceName))
    , m_manager(manager)
    , m_definition(std::make_shared<DeviceDefinition>()) {}

DeviceVariables::~DeviceVariables() {
    for (const auto& variable : m_order)
        m_manager.Remove(variable->Name());
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
    const std::lock_guard<std::mutex> hold(m_lock);
    m_lastError = reader.Error();
    if (!definition)
        return 0;
    m_order = Adopt(*definition);
    m_definition = std::make_shared<DeviceDefinition>(*definition);
    m_text = xml;
    return 1;
}

std::shared_ptr<HostValue> DeviceVariables::Find(const std::string& name) const {
    const std::lock_guard<std::mutex> hold(m_lock);
    const auto found = m_variables.find(name);
    return found == m_variables.end() ? nullptr : found->second;
}

std::shared_ptr<HostValue> DeviceVariables::FindState(const std::string& name) const {
    constexpr std::int32_t kFirstOwnCommand = 0;
    const auto definition = Definition();
    const CommandDefinition* own = definition->FindCommandOfId(kFirstOwnCommand);
    return own != nullptr && own->status == "Hidden" ? nullptr : Find(name);
}

std::shared_ptr<const DeviceDefinition> DeviceVariables::Definition() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_definition;
}

std::string DeviceVariables::DefinitionText() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_text;
}

std::vector<std::shared_ptr<HostValue>> DeviceVariables::All() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_order;
}

bool DeviceVariables::IsDefinedBy(const char* xml) const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_text == xml;
}

std::string DeviceVariables::LastError() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_lastError;
}

std::map<std::string, std::string> DeviceVariables::Kept() const {
    std::map<std::string, std::string> values;
    const auto definition = Definition();
    for (const auto& spec : definition->variables) {
        const bool isOfModule = std::any_of(std::begin(kOfModule), std::end(kOfModule),
                                            [&](const char* name) { return spec.name == name; });
        const auto variable = isOfModule ? nullptr : Find(spec.name);
        if (variable && variable->Text() != MakeValue(spec)->Text())
            values[spec.name] = variable->Text();
    }
    return values;
}

void DeviceVariables::GiveBack(const std::map<std::string, std::string>& values) {
    for (const auto& [name, text] : values) {
        if (const auto variable = Find(name))
            variable->SetText(text);
    }
}

DeviceVariables::Values DeviceVariables::Adopt(const DeviceDefinition& definition) {
    Values order;
    for (const auto& spec : definition.variables)
        order.push_back(AdoptVariable(spec));
    for (const auto& former : m_order) {
        if (std::find(order.begin(), order.end(), former) != order.end())
            continue;
        m_retired.push_back(former);
        const std::string name = former->Name().substr(m_deviceName.size() + 1);
        if (m_variables[name] == former) {
            m_manager.Remove(former->Name());
            m_variables.erase(name);
        }
    }
    return order;
}

std::shared_ptr<HostValue> DeviceVariables::AdoptVariable(const ValueSpec& spec) {
    auto& place = m_variables[spec.name];
    if (place && place->Type() == spec.type) {
        const ValueSpec* former = FormerSpec(spec.name);
        if (former == nullptr || !SameSpec(*former, spec))
            place->Configure(spec);
        return place;
    }
    const std::string fullName = m_deviceName + "." + spec.name;
    if (place)
        m_manager.Remove(fullName);
    place = MakeValue(spec);
    place->SetIdentity(fullName, spec.instanceId);
    m_manager.Add(place);
    return place;
}

const ValueSpec* DeviceVariables::FormerSpec(const std::string& name) const {
    const auto& former = m_definition->variables;
    const auto found = std::find_if(former.begin(), former.end(), [&](const auto& spec) { return spec.name == name; });
    return found == former.end() ? nullptr : &*found;
}

} // namespace stagehost
