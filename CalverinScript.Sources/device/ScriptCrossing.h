#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

#include "CompletionGate.h"
#include "IEndingRoom.h"
#include "ScriptEntrance.h"

class MCalverinScript_Device;
class MScriptThread;
class QObject;
class QThread;

/// The script thread of one device and the way across to it. While the debugger is enabled there is no such thread:
/// the device stays where it was made, and whoever crosses from there is across already.
///
/// - Calls of one thread run in the order in which they were made, outside the script, one after the other.
/// - A caller waits for the end of its own call. A call whose caller has gone on runs all the same.
/// - Once End has returned nobody waits here any more. A script that goes on then is left alone.
class ScriptCrossing final : public IEndingRoom {
public:
    /// A call on its way, shared by its caller and the script thread.
    class Call {
    public:
        Call() = default;
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;
        virtual ~Call() = default;
        /// What is to be done. @return what the caller gets.   [script]
        virtual bool Run() = 0;

    private:
        friend class ScriptCrossing;
        CompletionGate::Call m_completion;
    };

    /// @param lock, ending, runDeferred, home as ScriptEntrance has them. @param onHung is called by End when the
    /// script does not end in its time, before those who wait for it are let go.   [host main]
    /// @param onShortage as ScriptEntrance has it; also for calls, which give false then.
    ScriptCrossing(std::recursive_mutex& lock, const std::atomic<bool>& ending, std::function<void()> runDeferred,
                   std::function<void()> onHung, std::function<void()> onShortage, QObject* home);
    ScriptCrossing(const ScriptCrossing&) = delete;
    ScriptCrossing& operator=(const ScriptCrossing&) = delete;
    ~ScriptCrossing();

    /// Makes the thread and moves the device there.   [host main]
    void StartThread(MCalverinScript_Device& device);
    /// Whether the thread runs, or is not wanted.   [host main]
    bool IsUsable() const;
    /// Null while the debugger is enabled.
    MScriptThread* GetThread() const { return m_thread.get(); }
    ScriptEntrance& Entrance() { return m_entrance; }

    /// The thread begins to serve its events.   [script]
    void OnThreadStarted(QThread* thread) { m_entrance.SetThread(thread); }
    /// The thread serves no events any more and gives the device back.   [script]
    void OnThreadEnding(QObject& device);

    /// Runs a call on the script thread and waits until it is over, for limitMs at most;
    /// CompletionGate::kNoLimit has no end.
    /// @param result what the call gave. @return whether it is over.   [any but script]
    bool Run(const std::shared_ptr<Call>& call, std::uint32_t limitMs, bool& result);

    // IEndingRoom
    /// Refuses calls from now on.
    void BeginEnd() override { m_entrance.Close(); }
    /// Tells the thread to end, and a script that runs there to abort, and waits for it for a moment.
    void End() override;
    bool HasEnded() const override;

private:
    bool EndThread();

    const std::function<void()> m_onHung;
    const std::function<void()> m_onShortage;
    QThread* const m_homeThread; ///< where the device was made, and goes back to before it ends
    ScriptEntrance m_entrance;
    CompletionGate m_gate;
    std::unique_ptr<MScriptThread> m_thread;
    std::atomic<bool> m_threadLeft{false}; ///< set by the script thread when it touches the device no more
};
