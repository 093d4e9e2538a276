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
    /// @param desk must outlive the link.
    OlderLinkManager(FaceTable& faces, RequestDesk& desk);

    IManagerRemote* GetRemote() override { return &m_link; }

    /// Lets go of all callers that wait.   [host main]
    void EndWaiting() { m_link.EndWaiting(); }

private:
    OlderLink m_link;
};

/// Hands out the newer links, one for each device.
class NewerLinkManager final : public HostFace<IManagerRemoteManager2> {
public:
    /// @param desk must outlive the links.
    NewerLinkManager(FaceTable& faces, RequestDesk& desk);

    KXPCode Reserved1(void* argument) override;
    /// The same link at every call for a device; null for a null device.
    IManagerRemote2* GetRemote(IKXPDevice* device) override;

    /// Ends what the link of a device has under way, before the device is released: its handler is not called any more,
    /// and requests that never end are answered with 75. Unknown devices are ignored.   [host main]
    void Close(IKXPDevice* device);

    /// Ends the link of a device that has been released; unknown devices are ignored.   [host main]
    void Forget(IKXPDevice* device);

private:
    RequestDesk& m_desk;
    std::mutex m_lock; ///< guards m_links
    std::map<IKXPDevice*, std::unique_ptr<NewerLink>> m_links;
};

} // namespace stagehost
