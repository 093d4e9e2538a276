#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "ResourceSignature.h"

class IResourceProvider;
class MScriptMngRemote;
class MScriptResource;

/// The host's resources that a device has taken because settings name them, each as the object that its script gets.
///
/// The script's thread looks them up while the host's main thread takes and lets go. What is let go is detached from
/// the host before the call returns; the object itself goes to the bridge, which deletes it on the script's thread.
class ResourceRoom {
public:
    /// @param remote borrowed for the room's life.   [host main]
    explicit ResourceRoom(MScriptMngRemote& remote);
    ResourceRoom(const ResourceRoom&) = delete;
    ResourceRoom& operator=(const ResourceRoom&) = delete;
    ~ResourceRoom();

    /// Lets go of what it has and takes what is wanted, each resource once. What the host does not have is
    /// told in the log. The host may come back from inside and take others, or release the device: the newer call counts.
    /// @param provider null has nothing.   [host main]
    void Take(const std::vector<ResourceRequest>& wanted, IResourceProvider* provider);
    /// Lets go of everything and takes nothing any more. From then on no call to a resource begins, but for the end of
    /// one that is just being taken.   [host main]
    void Close();
    /// What was wanted last.   [host main]
    const std::vector<ResourceRequest>& GetRequests() const { return m_requests; }

    /// The object of a resource; null when it was not taken. Deleted by a later task of the script thread
    /// at the earliest. [script]
    MScriptResource* Find(const ResourceRequest& request);

private:
    struct Taken {
        ResourceRequest request;
        std::unique_ptr<MScriptResource> object;
    };

    bool TakeOne(const ResourceRequest& request, IResourceProvider* provider);
    void LetGo();
    void LetGoOf(std::vector<Taken> going);

    MScriptMngRemote& m_remote;
    std::vector<ResourceRequest> m_requests; ///< host main
    unsigned m_changes = 0;                  ///< how often it has let go; host main
    bool m_isClosed = false;                 ///< host main
    std::mutex m_lock;                       ///< never held while the host is called
    std::vector<Taken> m_taken;              ///< under m_lock
};
