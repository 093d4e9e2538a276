#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

/// Where callers of marshalled calls wait for the script thread.
///
/// - A caller waits for the completion of its own call and gets the result of its own call, however many are open.
/// - A call that completes before its wait begins is not lost.
/// - A wait that ends early, after its limit or by Abandon, gives false. The call may still complete later.
/// - Abandon lets all waiters go, now and from now on: the script thread will not answer any more.
class CompletionGate {
public:
    static constexpr std::uint32_t kNoLimit = 0xFFFFFFFF;

    class JoinedLoop;

    /// One call, from its request to its completion. Shared by the caller and by the task on the script thread, since
    /// either may be the last to look at it.
    class Call {
    public:
        Call() = default;
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

    private:
        friend class CompletionGate;
        bool m_done = false;          ///< under the gate's lock, as are the next two
        bool m_result = false;        ///< what the script thread gave
        JoinedLoop* m_loop = nullptr; ///< of the waiting caller, when it has events to serve
    };

    /// The call is complete, with this result.   [script]
    void Complete(Call& call, bool result);

    /// Waits until the call is complete, for limitMs at most. The host's main thread serves its events meanwhile.
    /// @param result what the call gave; false without a completion. @return whether it is complete.   [any but script]
    bool Wait(Call& call, std::uint32_t limitMs, bool& result);

    /// Lets all waiters go, now and from now on.   [host main]
    void Abandon();

private:
    void WaitInEventLoop(Call& call, std::uint32_t limitMs);
    void WaitAsleep(Call& call, std::uint32_t limitMs);

    std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<JoinedLoop*> m_loops; ///< loops that wait here; under m_lock
    bool m_abandoned = false;         ///< under m_lock
};
