#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

/// Ends the process unless it is met in time. An endless script cannot be talked to, so the process is left at once.
class ProcessDeadline {
public:
    /// @param onMissed runs on a thread of its own, then the process ends with the exit code.
    ProcessDeadline(std::chrono::milliseconds limit, int exitCode, std::function<void()> onMissed);
    ~ProcessDeadline();
    ProcessDeadline(const ProcessDeadline&) = delete;
    ProcessDeadline& operator=(const ProcessDeadline&) = delete;

    /// From here on the deadline counts no more.
    /// @return false when it has been missed: the process is ending, and nothing more is to be done.
    bool Meet();

private:
    enum class State { Open, Met, Missed };

    void Watch(std::chrono::milliseconds limit, int exitCode, const std::function<void()>& onMissed);

    std::mutex m_lock;
    std::condition_variable m_changed;
    State m_state = State::Open; ///< under m_lock
    std::thread m_watcher;       ///< the last member, since it reads the others
};
