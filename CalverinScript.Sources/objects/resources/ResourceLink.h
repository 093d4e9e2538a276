#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

class IResource;
class IScriptObjectOwner;
class MScriptCommonEvent;

/// The way of a script object to its resource at the host, and what is known of the resource's state. Shared by the
/// object and by those who walk the resources, so that it outlives a call that does not come back.
///
/// - No lock is held while the host is called: it may call back, on any thread.
/// - From Shut on no call begins, and none of the object's events is raised here.
/// - A call holds the link: from inside the host may release the device that the object belongs to.
/// - Of looks at the state that overlap, the one that began last counts, so "open" and "close" are told in their order.
class ResourceLink : public std::enable_shared_from_this<ResourceLink> {
public:
    /// @param resource the host's, may be null. @param owner may be null. @param object raises the events; its address
    /// alone is used.
    ResourceLink(IResource* resource, IScriptObjectOwner* owner, MScriptCommonEvent* object);
    ResourceLink(const ResourceLink&) = delete;
    ResourceLink& operator=(const ResourceLink&) = delete;

    /// Makes a call to the host. @return false, without a call, from Shut on.   [any]
    template <typename Call>
    bool Use(Call call) {
        if (!Enter())
            return false;
        const auto stays = shared_from_this();
        const Inside inside{*this};
        call();
        return true;
    }

    /// Lets no call begin any more.   [any]
    void Shut();
    bool IsShut() const;
    /// Waits for the calls of other threads that are still inside. @return whether none is left.   [any]
    bool WaitUntilUnused(std::chrono::milliseconds limit);

    /// Asks for the state and raises "open" or "close" when it is another than the last one.   [any]
    void Look();
    /// The next Look tells the state, whatever it was.   [any]
    void ForgetState();

private:
    struct Inside {
        ResourceLink& link;
        ~Inside() { link.Leave(); }
    };

    bool Enter();
    void Leave();
    std::uint64_t BeginLook();
    void EndLook(std::uint64_t look, std::uint32_t state);
    void Raise(const char* event) const;

    IResource* const m_resource;
    IScriptObjectOwner* const m_owner;
    MScriptCommonEvent* const m_object;

    mutable std::mutex m_lock;
    std::condition_variable m_left;
    std::vector<std::thread::id> m_inside; ///< under m_lock: the thread of each call
    bool m_shut = false;                   ///< under m_lock
    std::uint64_t m_looks = 0;             ///< under m_lock: looks that have begun
    std::uint64_t m_lastLook = 0;          ///< under m_lock: the one that gave the state
    std::uint32_t m_state = 0;             ///< under m_lock
    bool m_stateKnown = false;             ///< under m_lock
};
