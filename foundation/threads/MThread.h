#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>

#include "IThreadHandler.h"
#include "MEvent.h"
#include "SystemThread.h"

/// A worker thread with a cooperative stop. The body is the handler's ThreadRun, or Run() of a derived class when there
/// is no handler; it reads StopRequested() in its loop. The object may be started again after its thread has ended.
///
/// To stop a body that blocks: Stop(), then wake what it blocks on, then Wait(). In this order the body sees the
/// request whenever it wakes, and cannot block again.
///
/// The destructor stops and waits without limit, so the body must come to an end. A class
/// that overrides Run() calls StopAndWait() in its own destructor, before its fields go.
/// No thread may destroy its own MThread.   [thread: any, where nothing else is said]
class MThread {
public:
    /// @param handler the body; borrowed until the thread has ended, null for Run().
    explicit MThread(IThreadHandler* handler = nullptr);
    virtual ~MThread();
    MThread(const MThread&) = delete;
    MThread& operator=(const MThread&) = delete;

    /// The body of a derived class. @return the exit value, 0 here.   [thread: the started one]
    virtual std::uint32_t Run();

    /// The stack of the next start in bytes; 0 is the system's default. The object keeps and reports this value; the
    /// system thread gets it or kLeastStackSize, whichever is larger.
    void SetStackSize(std::size_t bytes);
    std::size_t GetStackSize() const;

    /// Starts the thread; true at once when it runs already. With waitForStart returns when the body is about to begin,
    /// or after timeoutMs.
    /// @return false when the system gives no thread.
    bool Start(bool waitForStart = false, std::uint32_t timeoutMs = kInfinite);

    /// Asks the body to end, and returns without waiting. terminate true does the same: a thread that is killed keeps
    /// its locks for ever and loses its memory, which would hang the whole program later.
    /// @return true when there is a thread to ask.
    bool Stop(bool terminate = false);

    /// Whether the caller is the thread that runs.   [thread: any]
    bool IsCurrent() const;

    /// Takes a request to end back: the body goes on.   [thread: the started one]
    void TakeStopBack();

    /// True from Stop() on, and while no thread runs.
    bool StopRequested() const { return m_stopRequested.load(std::memory_order_acquire); }

    /// Waits until the thread is gone, at most timeoutMs.
    /// @return true when none is left; false after the time-out, and at once when the caller is the thread itself.
    bool Wait(std::uint32_t timeoutMs = kInfinite);

    /// 0 idle, 1 lowest, 2 below normal, 3 normal, 4 above normal, 5 highest, 6 time-critical; any other value counts
    /// as 3. Kept for the next start, and applied at once to a thread that runs, as far as the system allows.
    void SetPriority(std::uint32_t priority);
    std::uint32_t GetPriority() const;

    /// True while the body runs.
    bool IsStarted() const { return m_started.load(std::memory_order_acquire); }

    /// What the last body returned, 0 before.
    std::uint32_t GetExitValue() const;

protected:
    void StopAndWait();

    /// Sleeps until WakeUp() or Stop(), at most timeoutMs.   [thread: the started one]
    void Sleep(std::uint32_t timeoutMs);

    /// Ends a Sleep, the running one or the next.
    void WakeUp() { m_wakeEvent.Set(); }

private:
    std::uint32_t Body();
    bool CreateThread(); // with m_lock held

    mutable std::mutex m_lock;
    SystemThread m_thread;                   // under m_lock
    bool m_running = false;                  // from a successful Start to the body's cleanup; under m_lock
    std::uint32_t m_priority;                // under m_lock
    std::size_t m_stackSize = 0;             // under m_lock
    std::atomic<bool> m_stopRequested{true}; // written by owners and the body's cleanup under m_lock, read by the body
    std::atomic<bool> m_started{false};      // written by the thread, read by anybody
    std::atomic<std::uint32_t> m_exitValue{0}; // written by the thread, read by anybody
    MEvent m_startedEvent;
    MEvent m_wakeEvent;
    IThreadHandler* const m_handler;
};
