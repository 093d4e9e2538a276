#pragma once

#include "SystemThread.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>

/// A manual-reset event: once set it lets every waiter through until it is reset.
/// - A Set is never lost: whoever waits after it, and before the next Reset, passes at once.
/// - What a thread wrote before Set is seen by whoever passed Wait because of it.
/// - The event may be destroyed as soon as Wait has returned, also while the Set that ended the wait is still
/// returning.
///   (That holds for Wait alone, not for IsSet.)
/// [thread: any]
class MEvent {
public:
    explicit MEvent(bool set = false)
        : m_set(set) {}

    void Set();
    void Reset();
    bool IsSet() const;

    /// Waits until the event is set, at most timeoutMs; kInfinite waits for ever, 0 only looks.
    /// @return true when it was set, also when somebody has reset it since; false after the time-out.
    bool Wait(std::uint32_t timeoutMs = kInfinite);

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_set;                     // under m_mutex
    std::uint64_t m_generation = 0; // number of Sets that changed m_set; under m_mutex
};
