#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "TimeLimit.h"

/// A wait for a time that another thread can end.
class Pause {
public:
    /// @return false when it was ended.   [script]
    bool Wait(std::chrono::milliseconds time) {
        const TimeLimit limit{time};
        std::unique_lock<std::mutex> guard(m_lock);
        return !m_changed.wait_until(guard, limit.End(), [this] { return m_ended; });
    }
    /// Ends the wait, and each one that begins before Begin.   [any]
    void End() {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_ended = true;
        m_changed.notify_all();
    }
    /// Waits last their time again.   [script]
    void Begin() {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_ended = false;
    }

private:
    std::mutex m_lock;
    std::condition_variable m_changed;
    bool m_ended = false; ///< under m_lock
};
