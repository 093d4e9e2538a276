#include "FactoryManager.h"

#include "HostCodes.h"

namespace stagehost {

FactoryManager::FactoryManager(HostFaces& faces)
    : HostFace(faces) {
    OfferAs("IObjectFactoryManager");
}

KXPCode FactoryManager::RegisterFactory(const char* name, IObjectFactory* factory) {
    if (name == nullptr || factory == nullptr)
        return KXP_NULL_ARGUMENT;
    const std::lock_guard<std::mutex> hold(lock_);
    factories_[name] = factory;
    return KXP_OK;
}

KXPCode FactoryManager::UnregisterFactory(const char* name) {
    if (name == nullptr)
        return KXP_NULL_ARGUMENT;
    const std::lock_guard<std::mutex> hold(lock_);
    return factories_.erase(name) == 1 ? KXP_OK : static_cast<KXPCode>(kUnknownFactory);
}

IObjectFactory* FactoryManager::Find(const std::string& name) const {
    const std::lock_guard<std::mutex> hold(lock_);
    const auto found = factories_.find(name);
    return found == factories_.end() ? nullptr : found->second;
}

} // namespace stagehost
