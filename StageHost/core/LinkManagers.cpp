#include "LinkManagers.h"

namespace stagehost {

OlderLinkManager::OlderLinkManager(FaceTable& faces, RequestDesk& desk)
    : HostFace(faces)
    , m_link(desk) {
    OfferAs("IManagerRemoteManager");
}

NewerLinkManager::NewerLinkManager(FaceTable& faces, RequestDesk& desk)
    : HostFace(faces)
    , m_desk(desk) {
    OfferAs("IManagerRemoteManager2");
}

KXPCode NewerLinkManager::Reserved1(void*) {
    return KXP_NOT_IMPLEMENTED;
}

IManagerRemote2* NewerLinkManager::GetRemote(IKXPDevice* device) {
    if (device == nullptr)
        return nullptr;
    const std::lock_guard<std::mutex> hold(m_lock);
    auto& link = m_links[device];
    if (!link)
        link = std::make_unique<NewerLink>(m_desk);
    return link.get();
}

void NewerLinkManager::Close(IKXPDevice* device) {
    NewerLink* link = nullptr;
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        const auto found = m_links.find(device);
        link = found == m_links.end() ? nullptr : found->second.get();
    }
    if (link != nullptr)
        link->Close();
}

void NewerLinkManager::Forget(IKXPDevice* device) {
    const std::lock_guard<std::mutex> hold(m_lock);
    m_links.erase(device);
}

} // namespace stagehost
