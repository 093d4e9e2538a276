#include "VariableManager.h"

#include <algorithm>
#include <mutex>

namespace stagehost {

VariableManager::VariableManager(HostFaces& faces, ChangeSink* sink)
    : HostFace(faces)
    , sink_(sink) {
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
    const std::lock_guard<std::shared_mutex> hold(lock_);
    if (variable->Name().empty() || variables_.count(variable->Name()) != 0)
        return false;
    variable->SetIdentity(variable->Name(), NumberFor(*variable));
    variables_.emplace(variable->Name(), variable);
    variable->TellChangesTo(sink_);
    return true;
}

void VariableManager::Remove(const std::string& name) {
    const std::lock_guard<std::shared_mutex> hold(lock_);
    const auto found = variables_.find(name);
    if (found == variables_.end())
        return;
    found->second->TellChangesTo(nullptr);
    variables_.erase(found);
}

std::shared_ptr<HostValue> VariableManager::Find(const std::string& name) const {
    const std::shared_lock<std::shared_mutex> hold(lock_);
    const auto found = variables_.find(name);
    return found == variables_.end() ? nullptr : found->second;
}

std::vector<std::shared_ptr<HostValue>> VariableManager::All() const {
    std::vector<std::shared_ptr<HostValue>> all;
    {
        const std::shared_lock<std::shared_mutex> hold(lock_);
        for (const auto& entry : variables_)
            all.push_back(entry.second);
    }
    std::sort(all.begin(), all.end(), [](const auto& left, const auto& right) { return left->Name() < right->Name(); });
    return all;
}

std::uint32_t VariableManager::NumberFor(const HostValue& variable) {
    if (variable.InstanceId() != 0 && numbers_.insert(variable.InstanceId()).second)
        return variable.InstanceId();
    do
        ++lastNumber_;
    while (lastNumber_ == 0 || !numbers_.insert(lastNumber_).second);
    return lastNumber_;
}

} // namespace stagehost
