#pragma once

#include <cstdint>
#include <functional>
#include <memory>

/// A number of events and the bytes that they carry.
struct BacklogLoad {
    std::uint64_t events = 0;
    std::uint64_t bytes = 0;

    /// Takes one event out of this room. @return false, and nothing is taken, when it is too small.
    bool Take(std::uint64_t eventBytes) {
        if (events == 0 || bytes < eventBytes)
            return false;
        --events;
        bytes -= eventBytes;
        return true;
    }
};

/// How much of one object's events waits for the script, and the bound of it. The object asks before it raises an event
/// or hears when it is time to pause; a script that stands still must not fill the memory with what its peers send.
///
/// - What Add has noted waits until its ticket goes, wherever the event ends: taken, dropped or forgotten.
/// - The object hears that the bound is reached, and then once that half of it or less waits; the
/// two always take turns.
/// - After the destructor nothing is told any more. Tickets may go later.
class ScriptBacklog {
public:
    /// Events that may wait, and their bytes.
    static constexpr BacklogLoad kMost = {65536, std::uint64_t{16} << 20};

    /// What goes with an event. Null holds nothing.
    using Ticket = std::shared_ptr<const void>;
    /// @param full true: the bound is reached; false: the script has caught up. Called under the backlog's lock: it
    /// must be short and must not come back here.   [the thread of Add; that on which an event ends, mostly script]
    using Tell = std::function<void(bool full)>;

    explicit ScriptBacklog(Tell tell);
    ScriptBacklog(const ScriptBacklog&) = delete;
    ScriptBacklog& operator=(const ScriptBacklog&) = delete;
    ~ScriptBacklog();

    /// How much more may wait. It only grows until the next Add.   [any]
    BacklogLoad GetRoom() const;
    /// Notes what is about to be queued, whether there is room or not.   [any]
    Ticket Add(const BacklogLoad& load);

private:
    struct State;
    const std::shared_ptr<State> m_state; ///< shared with the tickets
};
