#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

class QEventLoop;

namespace stagehost {

/// A thread with events of its own, for sockets, ports and timers that live on it:
///
/// - calls run on the thread in the order in which they were posted;
/// - what was posted before the end runs before the end.
///
/// An application object stands as long as the thread does.
class EventThread {
public:
    /// @throw std::system_error when the system has no thread left.
    EventThread();
    /// Runs what is left and waits for the thread.   [any but this thread]
    ~EventThread();
    EventThread(const EventThread&) = delete;
    EventThread& operator=(const EventThread&) = delete;

    /// Runs a call on the thread, later.   [any]
    void Post(std::function<void()> call);

    /// Runs a call on the thread and waits for it; at once when this is the thread.   [any]
    void Run(const std::function<void()>& call);

    /// Whether the caller is this thread.   [any]
    bool IsCurrent() const { return std::this_thread::get_id() == m_thread.get_id(); }

private:
    void Serve();
    void RunPosted();

    std::mutex m_lock; ///< guards the fields below
    std::condition_variable m_begun;
    std::deque<std::function<void()>> m_calls;
    QEventLoop* m_loop = nullptr; ///< lives on the thread; null before its events run and after they have ended
    std::thread m_thread;
};

} // namespace stagehost
