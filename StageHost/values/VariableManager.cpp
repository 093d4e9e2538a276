#include "VariableManager.h"

#include <algorithm>
#include <mutex>

namespace stagehost {

VariableManager::VariableManager(FaceTable& faces, ChangeSink* sink)
    : HostFace(faces)
    , m_sink(sink) {
    OfferAs("IVariableManager");
}

KXPCode VariableManager::Reserved1(void*) {
    return KXP_NOT_IMPLEMENTED;
}

IData* VariableManager::FindVariable(const char* name) {
    if (name == nullptr)
        return nullptr;
    const auto variable = Find(name);
    return variable ? variable->Face() : nullptr;
}

bool VariableManager::Add(const std::shared_ptr<HostValue>& variable) {
    const std::lock_guard<std::shared_mutex> hold(m_lock);
    if (variable->Name().empty() || m_variables.count(variable->Name()) != 0)
        return false;
    variable->SetIdentity(variable->Name(), NumberFor(*variable));
    m_variables.emplace(variable->Name(), variable);
    variable->TellChangesTo(m_sink);
    return true;
}

void VariableManager::Remove(const std::string& name) {
    const std::lock_guard<std::shared_mutex> hold(m_lock);
    const auto found = m_variables.find(name);
    if (found == m_variables.end())
        return;
    found->second->TellChangesTo(nullptr);
    m_variables.erase(found);
}

std::shared_ptr<HostValue> VariableManager::Find(const std::string& name) const {
    const std::shared_lock<std::shared_mutex> hold(m_lock);
    const auto found = m_variables.find(name);
    return found == m_variables.end() ? nullptr : found->second;
}

std::vector<std::shared_ptr<HostValue>> VariableManager::All() const {
    std::vector<std::shared_ptr<HostValue>> all;
    {
        const std::shared_lock<std::shared_mutex> hold(m_lock);
        for (const auto& entry : m_variables)
            all.push_back(entry.second);
    }
    std::sort(all.begin(), all.end(), [](const auto& left, const auto& right) { return left->Name() < right->Name(); });
    return all;
}

std::uint32_t VariableManager::NumberFor(const HostValue& variable) {
    if (variable.InstanceId() != 0 && m_numbers.insert(variable.InstanceId()).second)
        return variable.InstanceId();
    do
        ++m_lastNumber;
    while (m_lastNumber == 0 || !m_numbers.insert(m_lastNumber).second);
    return m_lastNumber;
}

} // namespace stagehost
