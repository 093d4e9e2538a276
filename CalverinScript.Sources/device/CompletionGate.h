#pragma once

#include <array>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

#include "MarshalledCall.h"

class QEventLoop;

/// Where callers of marshalled calls wait for the script thread. Each kind of call has a count of its completions; a caller
/// notes it before it asks and waits until it has grown, whichever call it was that completed. Abandon lets everybody go for
/// good: the script thread will not answer any more.
class CompletionGate {
public:
    using Generation = std::uint64_t;
    static constexpr std::uint32_t kNoLimit = 0xFFFFFFFF;

    /// The count to wait past.   [any]
    Generation Current(MarshalledCall call) const;
    /// One call of that kind is complete.   [script]
    void Notify(MarshalledCall call);
    /// Waits until the count has grown past seen, for limitMs at most.
    /// @return false after the limit and after Abandon.   [any but script]
    bool WaitPast(MarshalledCall call, Generation seen, std::uint32_t limitMs);
    /// Lets all waiters go, now and from now on, and quits the joined loops.   [host main]
    void Abandon();

    /// A nested event loop that waits here while this object lives: it quits with the next call of that kind that completes.
    class JoinLoop {
    public:
        JoinLoop(CompletionGate& gate, MarshalledCall call, QEventLoop& loop);
        ~JoinLoop();
        JoinLoop(const JoinLoop&) = delete;
        JoinLoop& operator=(const JoinLoop&) = delete;

    private:
        CompletionGate& m_gate;
        QEventLoop& m_loop;
    };

private:
    struct WaitingLoop {
        MarshalledCall call;
        QEventLoop* loop;
    };

    static std::size_t IndexOf(MarshalledCall call) { return static_cast<std::size_t>(call); }

    mutable std::mutex m_lock;
    std::condition_variable m_changed;
    std::array<Generation, kMarshalledCallCount> m_generations{}; ///< under m_lock
    std::vector<WaitingLoop> m_loops;                             ///< under m_lock
    bool m_abandoned = false;                                     ///< under m_lock
};
