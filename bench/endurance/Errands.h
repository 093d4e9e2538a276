#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

/// A thread of the host's that does what scripts have asked for, in order.
class Errands {
public:
    Errands();
    /// Does what is still there, then ends.
    ~Errands();
    Errands(const Errands&) = delete;
    Errands& operator=(const Errands&) = delete;

    void Post(std::function<void()> errand); // [any]

private:
    void Work();

    std::mutex m_lock;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_errands; ///< under the lock
    bool m_ends = false;                         ///< under the lock
    std::thread m_thread;
};
