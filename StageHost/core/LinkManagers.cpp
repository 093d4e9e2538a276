#include "LinkManagers.h"

namespace stagehost {

OlderLinkManager::OlderLinkManager(HostFaces& faces, RequestDesk& desk)
    : HostFace(faces)
    , link_(desk) {
    OfferAs("IManagerRemoteManager");
}

NewerLinkManager::NewerLinkManager(HostFaces& faces, RequestDesk& desk)
    : HostFace(faces)
    , desk_(desk) {
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
        link = std::make_unique<NewerLink>(desk_);
    return link.get();
}

void NewerLinkManager::Close(IKXPDevice* device) {
    NewerLink* link = nullptr;
    {
        const std::lock_guard<std::mutex> hold(lock_);
        const auto found = links_.find(device);
        link = found == links_.end() ? nullptr : found->second.get();
    }
    if (link != nullptr)
        link->Close();
}

void NewerLinkManager::Forget(IKXPDevice* device) {
    const std::lock_guard<std::mutex> hold(lock_);
    links_.erase(device);
}

} // namespace stagehost
