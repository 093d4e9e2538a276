#include "LinkManagers.h"

namespace stagehost {

OlderLinkManager::OlderLinkManager(HostFaces& faces)
    : HostFace(faces) {
    OfferAs("IManagerRemoteManager");
}

NewerLinkManager::NewerLinkManager(HostFaces& faces)
    : HostFace(faces) {
    OfferAs("IManagerRemoteManager2");
}

KXPCode NewerLinkManager::Reserved1(void*) {
    return KXP_NOT_IMPLEMENTED;
}

IManagerRemote2* NewerLinkManager::GetRemote(IKXPDevice* device) {
    if (device == nullptr)
        return nullptr;
    const std::lock_guard<std::mutex> hold(lock_);
    auto& link = links_[device];
    if (!link)
        link = std::make_unique<NewerLink>();
    return link.get();
}

void NewerLinkManager::Forget(IKXPDevice* device) {
    const std::lock_guard<std::mutex> hold(lock_);
    links_.erase(device);
}

} // namespace stagehost
