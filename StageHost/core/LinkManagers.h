#pragma once

#include <map>
#include <memory>
#include <mutex>

#include "HostFace.h"
#include "NewerLink.h"
#include "OlderLink.h"

namespace stagehost {

/// Hands out the one older link.
class OlderLinkManager final : public HostFace<IManagerRemoteManager> {
public:
    explicit OlderLinkManager(HostFaces& faces);

    IManagerRemote* GetRemote() override { return &link_; }

private:
    OlderLink link_;
};

/// Hands out the newer links, one for each device.
class NewerLinkManager final : public HostFace<IManagerRemoteManager2> {
public:
    explicit NewerLinkManager(HostFaces& faces);

    KXPCode Reserved1(void* argument) override;
    /// The same link at every call for a device; null for a null device.
    IManagerRemote2* GetRemote(IKXPDevice* device) override;

    /// Ends the link of a device that has been released; unknown devices are ignored.   [host main]
    void Forget(IKXPDevice* device);

private:
    std::mutex lock_; ///< guards links_
    std::map<IKXPDevice*, std::unique_ptr<NewerLink>> links_;
};

} // namespace stagehost
