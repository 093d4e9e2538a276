#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <utility>

/// What other threads want done on the script thread.
///
/// - Tasks of one thread run in the order in which they were posted.
/// - Every task that Post accepted runs exactly once.
/// - After Close nothing is accepted.
/// - A burst of tasks costs one wake-up: only the post that finds the inbox idle asks for one.
class ScriptInbox {
public:
    using Task = std::function<void()>;
    /// Makes the script thread call Take until it is empty. Called under no lock.   [any]
    using WakeUp = std::function<void()>;

    explicit ScriptInbox(WakeUp wakeUp)
        : m_wakeUp(std::move(wakeUp)) {}

    /// Queues a task. @return false after Close.   [any]
    bool Post(Task task);
    /// Takes the oldest task. When there is none the inbox counts as idle and the next post wakes.
    /// @return false when there is none.   [script]
    bool Take(Task& out);
    /// Refuses tasks from now on. What was accepted stays to be taken.   [any]
    void Close();

private:
    const WakeUp m_wakeUp;
    std::mutex m_lock;
    std::deque<Task> m_tasks; ///< under m_lock
    bool m_awake = false;     ///< under m_lock: a wake-up is on its way or being served
    bool m_closed = false;    ///< under m_lock
};
