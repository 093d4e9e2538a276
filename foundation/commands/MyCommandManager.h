#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

#include "Clock.h"
#include "CommandQueue.h"
#include "MCommandObject.h"
#include "MEvent.h"
#include "MLock.h"

/// The results of MyCommandManager.
enum CommandCode : std::int32_t {
    kCommandDone = 0,
    kCommandNull = -1,          ///< a null command
    kCommandNothing = -2,       ///< nothing queued, or nothing current
    kCommandBusy = -3,          ///< another command is current, or the lock is taken
    kCommandRan = 1,            ///< executed within the call
    kCommandQueued = 2,         ///< waits for the command thread
    kCommandQueuedDropping = 3, ///< waits; the oldest queued one was destroyed to make room
};

/// A queue of commands and, beside it, at most one current command with a watchdog. What a command does is told by
/// overriding ExecuteCommand. Four kinds of thread meet here: those that post, the command thread that takes and
/// executes, the tick thread that runs the watchdog, and whoever clears at the end.
///
/// - Commands become current in the order in which they were posted.
/// - Every command that a post took over is destroyed exactly once: finished, dropped,
///   cleared, or kept by the caller of FinishCurrentCommand.
/// - A posted command wakes the command thread; so does finishing one while others wait.
///
/// Lock order: the manager's lock before the queue's. The manager's lock is recursive, since ExecuteCommand, which runs
/// under it, finishes its own command. Commands are destroyed after this class has left its locks, but a command that
/// finishes itself is destroyed within its execution, where the lock is held around it.
///
/// A derived class has ended its command thread and its timer before its destructor ends.
class MyCommandManager {
public:
    using MillisecondSource = std::function<std::uint32_t()>;

    static constexpr std::uint32_t kDefaultTimeoutMs = 5000;
    static constexpr std::int32_t kDefaultMaxQueued = 1000;

    /// @param directExecute a post executes at once, on its own thread, when nothing else is there
    /// @param holdLockDuringExecute the watchdog cannot touch a command while it executes, since it only tries the lock
    /// @param clock milliseconds that wrap at 2^32
    explicit MyCommandManager(std::uint32_t defaultTimeoutMs = kDefaultTimeoutMs, bool directExecute = false,
                              bool holdLockDuringExecute = true, MillisecondSource clock = &MillisecondClock);
    MyCommandManager(const MyCommandManager&) = delete;
    MyCommandManager& operator=(const MyCommandManager&) = delete;

    /// Waits until the command thread is woken. @return false after timeoutMs.   [thread: command]
    virtual bool WaitForCommand(std::uint32_t timeoutMs);

    /// Ends WaitForCommand, the running one or the next.   [thread: any]
    virtual void WakeCommandThread();

    /// Makes the oldest queued command the current one. Clears the wake-up.
    /// @return kCommandDone, kCommandNothing, or kCommandBusy while one is current.   [thread: command, tick]
    virtual std::int32_t TakeNextCommand();

    /// Starts the watchdog's time of the current command and executes it.
    /// @return kCommandDone, or kCommandNothing without a current one.   [thread: command, tick]
    virtual std::int32_t ExecuteCurrentCommand();

    /// Ends the current command and deletes it; with any `keep` that is not null it is not deleted, and belongs to the
    /// caller. Wakes the command thread when others wait.
    /// @return kCommandDone, or kCommandNothing without a current one.   [thread: command, tick]
    virtual std::int32_t FinishCurrentCommand(MCommandObject* keep);

    /// Leaves the current command current, under the watchdog, and clears the wake-up: its answer comes later.
    /// @return kCommandDone, or kCommandNothing without a current one.   [thread: command]
    virtual std::int32_t HoldCurrentCommand();

    /// Takes over a command. One without a time-out gets the default.
    /// @return kCommandQueued, kCommandQueuedDropping, kCommandRan
    /// (direct execution alone) or kCommandNull.   [thread: any]
    virtual std::int32_t PostCommand(MCommandObject* command);
    /// The same, but the oldest queued one is handed to the caller instead of being destroyed.   [thread: any]
    std::int32_t PostCommand(MCommandObject* command, std::unique_ptr<MCommandObject>& dropped);

    /// Takes over a command and executes it on this thread when
    /// nothing is queued, nothing is current and the lock is free.
    /// @return kCommandRan; or kCommandBusy or kCommandNull, the command then still being the caller's.   [thread: any]
    virtual std::int32_t PostCommandNow(MCommandObject* command);

    /// The watchdog. Tells the current command, or null, where the
    /// caller asks for it (unchanged while the lock is taken).
    /// @return true when the current command has outlived its time-out. If the caller asked for the command, the lock
    /// is then held, and the caller must call UnlockCurrentCommand.   [thread: tick]
    virtual bool CheckCommandTimeout(MCommandObject** outCurrent);

    /// Does the work of a command, which it may finish. The result is for those who override.   [thread: as called]
    virtual bool ExecuteCommand(MCommandObject* command);

    /// How many commands may wait before a post drops the oldest. Below 0 counts as 0.   [thread: any]
    virtual void SetMaxQueued(std::int32_t count);
    virtual std::int32_t GetMaxQueued() const;

    virtual ~MyCommandManager();

    /// Enters the lock. @return the current command, with the
    /// lock held until UnlockCurrentCommand; or null, without it.
    MCommandObject* LockCurrentCommand();
    void UnlockCurrentCommand();

    /// Deletes the queue and the current command. Waits for an execution that holds the lock.   [thread: any]
    void ClearCommands();

    /// With true, what is posted from here on outlives ClearCommands while it waits, until a call with false; another
    /// one with true changes nothing.   [thread: any]
    void KeepFromHere(bool keeps) { m_queue.KeepFromHere(keeps); }

    /// Commands that wait, the current one not counted.   [thread: any]
    std::int32_t GetQueuedCount() const { return m_queue.Count(); }

private:
    std::uint32_t StartTime() const;
    void ApplyDefaultTimeout(MCommandObject& command) const;
    bool TryExecuteDirectly(MCommandObject* command);
    void ExecuteAndUnlock(); // with m_lock held and a current command; leaves m_lock

    CommandQueue m_queue;
    MLock m_lock;
    std::unique_ptr<MCommandObject> m_current; // under m_lock
    std::uint32_t m_startTimeMs = 0;           // 0: the watchdog is off for the current command; under m_lock
    std::atomic<std::int32_t> m_maxQueued{kDefaultMaxQueued};
    MEvent m_wakeEvent;
    const std::uint32_t m_defaultTimeoutMs;
    const bool m_directExecute;
    const bool m_holdLockDuringExecute;
    const MillisecondSource m_clock;
};
