#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "IThreadTimerHandler.h"
#include "SystemThread.h"

/// The handlers of an MThreadTimer and the thread that calls them, one pass after the other. The thread that asks for a
/// pass waits for it, and so never sits in a handler itself: a call that does not come back in time is left to its
/// handler, and another thread goes on with the handlers behind it.
///
/// - No lock is held while a handler runs.
/// - At most one call of a handler is under way at a time. While one has been left, that handler is passed over.
/// - A call that comes back late takes its place in the passes again.
///
/// What the threads share belongs to all of them, since a call that was left may
/// come back after the timer has gone.   [thread: any, where nothing else is said]
class TimerPasses {
public:
    using Clock = std::chrono::steady_clock;

    /// @param patience how long a call may take before it is left.
    explicit TimerPasses(std::chrono::milliseconds patience)
        : m_patience(patience) {}
    /// The thread has ended before, see End.
    ~TimerPasses() = default;
    TimerPasses(const TimerPasses&) = delete;
    TimerPasses& operator=(const TimerPasses&) = delete;

    /// Adds a handler behind the others; it joins a running pass. Null, and one that is there already, are ignored.
    /// @return true when it is the only one.
    bool Add(IThreadTimerHandler* handler);

    /// Removes a handler once a running pass is over, and waits for a call of it that the next one has begun meanwhile;
    /// at once when a handler of that pass asks.
    /// @return false when a call of it has been left: it may come back at any time. True when it may be destroyed.
    bool Remove(IThreadTimerHandler* handler);

    /// Runs one pass and waits for it. isStopped is asked between two calls and ends the pass.
    /// @return false when there was nobody to call.   [thread: the timer's]
    bool Run(std::uint32_t nowMs, const std::function<bool()>& isStopped, std::size_t stackSize,
             ThreadPriority priority);

    /// Ends the calling thread and waits for it, unless it has been left.   [thread: the timer's]
    void End();

private:
    struct Entry {
        explicit Entry(IThreadTimerHandler* called)
            : handler(called) {}
        IThreadTimerHandler* const handler;
        bool inCall = false;  ///< under the shared lock, as are the next two
        bool isLeft = false;  ///< that call has outlived the patience
        bool removed = false; ///< somebody may be waiting for that call
    };

    /// All under its lock.
    struct Shared {
        std::mutex lock;
        std::condition_variable changed;
        std::vector<std::shared_ptr<Entry>> entries;
        std::uint64_t caller = 0; ///< number of the thread that calls; one of another number has been left
        bool hasCaller = false;   ///< that thread exists
        bool running = false;     ///< a pass is to be run
        std::uint64_t pass = 0;   ///< number of the last pass that was begun
        std::size_t next = 0;     ///< the next entry of the running pass
        std::uint32_t nowMs = 0;  ///< of the running pass
        const std::function<bool()>* isStopped = nullptr; ///< of the running pass
        bool inCall = false;                              ///< the caller is in a handler
        std::shared_ptr<Entry> current;                   ///< that handler
        Clock::time_point callBegan;
    };
    using Guard = std::unique_lock<std::mutex>;

    static void Call(const std::shared_ptr<Shared>& shared, std::uint64_t number);
    static void CallOne(IThreadTimerHandler& handler, std::uint32_t nowMs);
    static bool CallAll(Shared& shared, std::uint64_t number, Guard& guard);
    bool EnsureCaller(std::size_t stackSize, ThreadPriority priority);
    void WaitForPass(Guard& guard);
    void LeaveCaller();
    bool IsCaller() const;

    const std::chrono::milliseconds m_patience;
    const std::shared_ptr<Shared> m_shared = std::make_shared<Shared>();
    SystemThread m_caller; ///< under the shared lock
};
