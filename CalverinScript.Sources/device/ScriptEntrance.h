#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include <QObject>

#include "ScriptInbox.h"

class QScriptEngine;
class QString;
class QThread;
class ScriptStopper;

/// The way into the script of one device, and the way out of one that will not end.
///
/// It lives on the script thread, as the engine does. Whoever enters the script holds an Entry; what comes meanwhile
/// for the script thread waits for the outermost one to end, although a running engine lets its thread process events
/// now and then. Other threads leave tasks, which run one after the other outside the script.
///
/// - No task and no deferred work runs inside the script.
/// - What was deferred or left while the script ran is taken up when it has been left.
/// - A turn of tasks has an end even when they come faster than they run: the thread's timers have theirs in between.
/// - Once the device is ending, a script that is running is aborted on its own thread as soon as the
///   engine looks at events.
class ScriptEntrance final : public QObject {
public:
    /// @param lock      held for each entry, before any lock of a script object; borrowed.
    /// @param ending    becomes true once, when the device ends; borrowed.
    /// @param runDeferred runs before the tasks of a turn, outside the script.   [script]
    /// @param onShortage runs when memory ran out in a task, which is over then.   [script]
    /// @param parent    the device, with which this object changes its thread. It is not deleted by it.
    ScriptEntrance(std::recursive_mutex& lock, const std::atomic<bool>& ending, std::function<void()> runDeferred,
                   std::function<void()> onShortage, QObject* parent);
    ~ScriptEntrance() override;

    /// One entry into the script, from any thread: the lock is held, and on the script thread nothing else
    /// that waits there starts.
    class Entry {
    public:
        explicit Entry(ScriptEntrance& entrance);
        ~Entry();
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;

    private:
        ScriptEntrance& m_entrance;
        const bool m_onScriptThread;
    };

    /// Makes an engine ready to be aborted. Called once, before it runs any script.   [the engine's thread]
    void SetEngine(QScriptEngine& engine);
    /// Names the thread that owns the engine.   [host main, script]
    void SetThread(QThread* thread) { m_thread = thread; }
    /// Whether the caller is on the thread that owns the engine.   [any]
    bool IsOnScriptThread() const;
    /// Whether the engine's thread is inside the script.   [any]
    bool IsInside() const { return m_depth > 0; }

    /// Leaves a task for the script thread. @return false after Close.   [any]
    bool Post(ScriptInbox::Task task) { return m_inbox.Post(std::move(task)); }
    /// Refuses tasks from now on.   [any]
    void Close() { m_inbox.Close(); }
    /// Makes the script thread look at what waits for it; one that is inside the script of an ending
    /// device aborts it.   [any]
    void WakeUp();
    /// Says that deferred work waits for the script to be left.   [script]
    void Defer() { m_deferred = true; }
    /// Ends the script that runs on this thread, from an event that the engine lets through. Tried again until the thread has left the script, since between two calls into it there is
    /// nothing to abort.   [script]
    void Abort();
    /// A text that the engine is about to evaluate.   [script]
    void LookAt(const QString& text);
    /// Whether the script of the ending device had to be stopped.   [script]
    bool HasStoppedScript() const;
    /// The thread is about to end and serves no events any more.   [script]
    void LeaveThread();

protected:
    bool event(QEvent* received) override;
    void timerEvent(QTimerEvent* fired) override;

private:
    void TakeTurn();
    void RunTask(const ScriptInbox::Task& task);

    std::recursive_mutex& m_lock;
    const std::atomic<bool>& m_ending;
    const std::function<void()> m_runDeferred;
    const std::function<void()> m_onShortage;
    QScriptEngine* m_engine = nullptr; ///< not owned; script thread alone
    std::atomic<QThread*> m_thread;    ///< the thread that owns the engine
    std::atomic<int> m_depth{0};       ///< entries that are open on the engine's thread, which alone writes it
    const std::unique_ptr<ScriptStopper> m_stopper; ///< for the end of the device
    std::atomic<QEvent*> m_reserve; ///< the wake-up for want of memory, owned; null while it is on its way
    bool m_deferred = false;        ///< script thread alone, as is the next
    int m_abortTimer = 0;           ///< runs once a script is to be aborted
    ScriptInbox m_inbox;
};
