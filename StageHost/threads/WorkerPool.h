#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace stagehost {

/// A call that runs on a thread of the pool.
class Task {
public:
    virtual ~Task() = default;
    /// Whether the call has come back, or will never begin.   [any]
    virtual bool IsDone() const = 0;
    /// Keeps the call from beginning, for who is about to give up what it uses. @return false when it has begun. [any]
    virtual bool Withdraw() = 0;
};

/// The host's threads for calls that may block: commands, Start and Stop. Tasks begin in the order in which they were
/// given, each at once on a thread of its own if no other is free, so that one that never returns holds up nobody.
/// Where the system has no thread left, a task waits for one that gets free.
class WorkerPool {
public:
    /// Makes the first thread, so that there is always one. @throw std::system_error when the system has none left.
    WorkerPool();
    /// Waits a short while for running tasks and leaves those that do not end behind; see Close.
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    /// Runs a call; the main thread's wait is woken when it has come back.   [any]
    std::shared_ptr<Task> Run(std::function<void()> call);

    /// Ends the threads. @return false when a task was still running at the end of the limit: it is left behind, and
    /// only the end of the process ends it.   [host main]
    bool Close(std::chrono::milliseconds limit);

private:
    struct State;
    std::shared_ptr<State> m_state; ///< shared with the threads, which may outlive the pool
};

} // namespace stagehost
