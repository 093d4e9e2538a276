#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

/// Ends the process unless it is met in time. An endless script cannot be talked to, so the process is left at once.
class Deadline {
public:
    /// @param onMissed runs on a thread of its own, then the process ends with the exit code.
    Deadline(std::chrono::milliseconds limit, int exitCode, std::function<void()> onMissed);
    ~Deadline();
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;

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
