#pragma once

#include <mutex>

/// A critical section: its own thread may enter it again, and leaves it as often as it entered. Also a standard
/// Lockable, so that std::lock_guard and std::unique_lock work on it.   [thread: any]
class MLock {
public:
    void Enter() { m_mutex.lock(); }
    void Leave() { m_mutex.unlock(); }

    /// Enters without waiting. @return false when another thread holds it.
    bool TryEnter() { return m_mutex.try_lock(); }

    void lock() { Enter(); }
    void unlock() { Leave(); }
    bool try_lock() { return TryEnter(); }

private:
    std::recursive_mutex m_mutex;
};
