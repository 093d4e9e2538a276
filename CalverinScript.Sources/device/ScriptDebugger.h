#pragma once

#include <atomic>
#include <memory>

#include <QString>

class QObject;
class QScriptEngine;
class QScriptEngineAgent;
class QScriptEngineDebugger;
class ScriptEntrance;

/// The debugger of one device. It shows windows, so with it the engine stays on the host's main thread, and there
/// is no script thread.
///
/// The tick lets an evaluation go on past the debugger's automatic first stop, so that breakpoints alone decide where
/// it halts, and aborts what still runs when the device is stopped. Both only ask; the debugger hears of it on the
/// engine's thread, which serves its events also while the script is halted.
class ScriptDebugger {
public:
    /// Attaches a debugger to the engine, with the agent that reports exceptions beside it.
    /// @param engine, entrance, agent borrowed for this object's life.   [host main]
    ScriptDebugger(QScriptEngine& engine, QScriptEngineAgent& agent, ScriptEntrance& entrance);
    ~ScriptDebugger();
    ScriptDebugger(const ScriptDebugger&) = delete;
    ScriptDebugger& operator=(const ScriptDebugger&) = delete;

    /// Halts at the next statement and shows the window.   [host main]
    void Show(const QString& title);
    /// An evaluation begins, and goes on at each tick until it ends.   [script]
    void BeginEvaluation() { m_continue = true; }
    void EndEvaluation() { m_continue = false; }
    /// Asks for the end of what runs, which a halted script does not follow.   [any]
    void RequestAbort() { m_abort = true; }
    /// Does what was asked for.   [tick]
    void Tick();

    QScriptEngineDebugger& GetDebugger() const { return *m_debugger; }

private:
    void Trigger(int action);
    void AbortEvaluation();

    ScriptEntrance& m_entrance;
    const std::unique_ptr<QScriptEngineDebugger> m_debugger; ///< on the host's main thread
    std::atomic<bool> m_continue{false};                     ///< written by the script thread, read by the tick
    std::atomic<bool> m_abort{false};                        ///< set by host threads, taken by the tick
};
