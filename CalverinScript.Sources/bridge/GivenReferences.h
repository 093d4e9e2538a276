#pragma once

#include <cstddef>
#include <list>
#include <mutex>
#include <unordered_map>

class MyAsyncDeviceExecContext;

/// The references that hosts were given with asynchronous requests which are over. Nothing tells a host that it has
/// one: some drop it, most never do. So the newest of them stay, for hosts that still use theirs, and the oldest is
/// dropped for the host when there are more than kMost. One for the process, since a host may use its reference when
/// the device is long gone.   [thread: any]
class GivenReferences {
public:
    static constexpr std::size_t kMost = 1000;

    /// Never destroyed: a host may drop a reference while the process ends.
    static GivenReferences& Instance();

    /// The request of a context is over. The caller holds a reference of its own.
    void Keep(MyAsyncDeviceExecContext* context);
    /// The host has dropped the reference, or the context goes.
    void Leave(MyAsyncDeviceExecContext* context);
    std::size_t Count() const;

private:
    mutable std::mutex m_lock;
    std::list<MyAsyncDeviceExecContext*> m_contexts; ///< under m_lock, oldest first
    std::unordered_map<MyAsyncDeviceExecContext*, std::list<MyAsyncDeviceExecContext*>::iterator>
        m_places; ///< under m_lock
};
