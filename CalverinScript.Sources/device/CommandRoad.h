#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "DeviceStatus.h"
#include "DropLog.h"
#include "IEndingRoom.h"
#include "InterlockedCounter.h"
#include "MThread.h"
#include "ScriptRequest.h"

class ICommandObjectHandler;
class IExecContext;
class IThreadHandler;
class MyCommandManager;

/// What the road needs of the device that it runs through.
class ICommandWork {
public:
    virtual ~ICommandWork() = default;
    /// The device's name for the log.   [any]
    virtual std::string GetRoadName() = 0;
    /// Whether commands are taken at the moment.   [any]
    virtual bool MayPost() const = 0;
    /// Does what a request asks for. @return false when it failed: its command is held then.   [command, tick]
    virtual bool Run(const ScriptRequest& request) = 0;
    /// Shows what the device is busy with.   [command, tick]
    virtual void ShowStatus(DeviceStatus status) = 0;
    /// Shows a failure; an empty text clears the one before.   [command, tick]
    virtual void ShowError(const char* text) = 0;
    /// A command is over.   [command, tick]
    virtual void OnCommandOver() = 0;
    /// An answer will never be delivered.   [any]
    virtual void DropAnswer(MyAsyncDeviceExecContext* answer) = 0;
};

/// The road of a command: posted on any thread, executed in turn on the command thread, watched by the tick thread.
///
/// - Requests are executed in the order in which they were posted.
/// - The context of a function with parameters begins with its post and ends with its command, executed or not.
/// - A command that fails is held, executed once more after its time, and given up after the second.
/// - What a full queue drops is let go at once and told in the log by its number, at once and then once a second at most.
class CommandRoad final : public IEndingRoom {
public:
    /// All are borrowed for the road's life. @param threadBody calls Serve on the command thread. @param contexts is
    /// told of the life of the host's contexts. @param stackSize of the command thread, in bytes.
    CommandRoad(MyCommandManager& queue, IThreadHandler& threadBody, ICommandObjectHandler& contexts,
                ICommandWork& work, std::size_t stackSize);

    /// A run begins: what is posted from here on outlives the Stop of the run before, which may come late.
    /// [any host thread, command]
    void BeginRun();
    /// Starts the command thread; nothing when it runs. One that was asked to end, and is still in a handler, is waited
    /// for; when that thread itself asks, it goes on.   [any host thread, command]
    void Start();
    /// Whether somebody executes what is posted. A thread that the system did not give is asked for again. True while
    /// the road is not started: its commands wait for the start.   [any host thread]
    bool HasThread();
    /// The run ends: asks the command thread to end behind the command in execution, and waits for nobody. Stop has to
    /// follow, be it behind the beginning of another run.   [any]
    void EndRun();
    /// Ends the command thread behind the command in execution, and drops what waits of runs that have ended. The command
    /// thread itself may ask: it ends when it is back from what it does.   [any host thread, tick, command]
    void Stop();

    // IEndingRoom
    void End() override {
        EndRun();
        Stop();
    }
    /// Whether the caller is the command thread.   [any]
    bool IsOnThread() const { return m_thread.IsCurrent(); }
    /// Whether the command thread is out of everything that it was called into.   [any]
    bool HasEnded() const override { return m_thread.Wait(0); }

    /// Queues a request. @param context of the host, may be null. @return false when no command is taken.   [any]
    bool Post(const ScriptRequest& request, IExecContext* context);
    /// Does what a request asks for, with log lines and status around it. @return whether it
    /// was done.   [command, tick]
    bool Execute(const ScriptRequest& request);
    /// Executes a command of the queue and finishes or holds it. @return whether it is over.   [command, tick]
    bool ExecuteCommand(MCommandObject& command);
    /// The life of the command thread.   [command]
    void Serve(MThread& thread);
    /// Repeats or gives up a held command whose time is over, and tells what was dropped.   [tick]
    void OnTick();

    /// Hands the function in execution over: the caller owns its command, which stays open when the function returns.
    /// @return null outside a function with parameters, and when it has been taken already.   [script]
    MCommandObject* TakeExecuting() { return m_executing.exchange(nullptr); }

    /// Commands that are posted and not over. One in execution while a stop clears the count is no longer counted.   [any]
    std::int32_t GetStackCount() const { return m_stackCount.Read(); }
    void ClearStackCount() { m_stackCount.Exchange(0); }

private:
    void Queue(std::unique_ptr<MCommandObject> command);
    void LetGo(const MCommandObject& dropped);
    void CheckExpired();
    void GiveUp(MCommandObject* command);
    void TellWantOfMemory();
    void TellDropped(std::uint64_t count);

    MyCommandManager& m_queue;
    ICommandObjectHandler& m_contexts;
    ICommandWork& m_work;
    mutable MThread m_thread;             ///< a wait changes nothing that others see
    std::atomic<bool> m_isMissing{false}; ///< started without a thread: written and read by host threads
    InterlockedCounter m_stackCount;
    std::atomic<MCommandObject*> m_executing{nullptr}; ///< set by whoever executes a function, taken by the script
    DropLog m_dropped;
};
