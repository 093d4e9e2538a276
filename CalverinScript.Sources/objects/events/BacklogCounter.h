#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <utility>

#include "ScriptBacklog.h"

/// The bound of ScriptBacklog for events that come by the million: it counts them without a lock or a ticket, so the
/// event itself says when it waits no more.
class BacklogCounter {
public:
    /// @param caughtUp called once half of the bound or less waits again after an event found no room.
    /// [the thread of Leave or Enter]
    explicit BacklogCounter(std::function<void()> caughtUp)
        : m_caughtUp(std::move(caughtUp)) {}

    /// One more event waits, which Leave takes back. @return false where there is no room: it does not wait.   [any]
    bool Enter(std::uint64_t bytes) {
        const std::uint64_t events = m_events.fetch_add(1) + 1;
        const std::uint64_t allBytes = m_bytes.fetch_add(bytes) + bytes;
        if (events <= ScriptBacklog::kMost.events && allBytes <= ScriptBacklog::kMost.bytes)
            return true;
        m_refused = true;
        Leave(bytes);
        return false;
    }

    /// One that has entered waits no more.   [any]
    void Leave(std::uint64_t bytes) {
        const std::uint64_t events = m_events.fetch_sub(1) - 1;
        const std::uint64_t allBytes = m_bytes.fetch_sub(bytes) - bytes;
        const bool hasRoom = events <= ScriptBacklog::kMost.events / 2 && allBytes <= ScriptBacklog::kMost.bytes / 2;
        if (hasRoom && m_refused && m_refused.exchange(false))
            m_caughtUp();
    }

private:
    const std::function<void()> m_caughtUp;
    std::atomic<std::uint64_t> m_events{0};
    std::atomic<std::uint64_t> m_bytes{0};
    std::atomic<bool> m_refused{false}; ///< one found no room since caughtUp was called last
};
