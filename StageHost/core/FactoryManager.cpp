#include "FactoryManager.h"

#include "HostCodes.h"

namespace stagehost {

FactoryManager::FactoryManager(FaceTable& faces)
    : HostFace(faces) {
    OfferAs("IObjectFactoryManager");
}

KXPCode FactoryManager::RegisterFactory(const char* name, IObjectFactory* factory) {
    if (name == nullptr || factory == nullptr)
        return KXP_NULL_ARGUMENT;
    const std::lock_guard<std::mutex> hold(m_lock);
    m_factories[name] = factory;
    return KXP_OK;
}

KXPCode FactoryManager::UnregisterFactory(const char* name) {
    if (name == nullptr)
        return KXP_NULL_ARGUMENT;
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_factories.erase(name) == 1 ? KXP_OK : static_cast<KXPCode>(kUnknownFactory);
}

IObjectFactory* FactoryManager::Find(const std::string& name) const {
    const std::lock_guard<std::mutex> hold(m_lock);
    const auto found = m_factories.find(name);
    return found == m_factories.end() ? nullptr : found->second;
}

} // namespace stagehost
