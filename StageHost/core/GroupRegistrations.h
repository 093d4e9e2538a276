#pragma once

#include <map>
#include <mutex>
#include <string>

#include "IManagerRemote.h"
#include "ShowModel.h"

namespace stagehost {

/// The groups that one device has registered for, and the way of their changes to its handler.
///
/// The handler is called on the thread of the feed, for each change of a variable of a registered group that comes
/// after the registration, once however many of the groups have the variable.
class GroupRegistrations {
public:
    /// @param model must outlive this object.
    explicit GroupRegistrations(ShowModel& model);
    ~GroupRegistrations();
    GroupRegistrations(const GroupRegistrations&) = delete;
    GroupRegistrations& operator=(const GroupRegistrations&) = delete;

    /// Binds the handler; null unbinds. Behind the call the one before is not called any more.   [any]
    void SetHandler(IManagerRemoteHandler* handler);
    IManagerRemoteHandler* Handler() const;

    /// Registers for a group. @param events whether changes are told; a registration that tells them goes on to do so
    /// when it is made again without.   [any]
    void Add(const std::string& group, bool events);
    /// Ends one registration; one that does not stand is ignored.   [any]
    void Remove(const std::string& group);
    /// Ends all of them.   [any]
    void Clear();

    /// Unbinds the handler for good. Not to be called by the handler.   [host main]
    void Close();

private:
    struct Registration {
        bool events = false;
        std::uint64_t after = 0; ///< changes up to this number came before the registration
    };

    void Subscribe();
    void Hear(const ShowChange& change);
    bool IsHeard(const ShowChange& change) const;

    ShowModel& m_model;
    mutable std::recursive_mutex m_lock; ///< guards the three fields below; held while the handler is called
    IManagerRemoteHandler* m_handler = nullptr;
    std::map<std::string, Registration> m_groups;
    bool m_closed = false;
    std::mutex m_subscribing; ///< guards m_subscription; never taken on the thread of the feed
    Subscription m_subscription;
};

} // namespace stagehost
