#pragma once

#include <atomic>
#include <cstdint>

#include "SystemThread.h"

/// A manual-reset event: once set it lets every waiter through until it is reset.
/// - A Set is never lost: whoever waits after it, and before the next Reset, passes at once.
/// - What a thread wrote before Set is seen by whoever passed Wait because of it.
/// - The event may be destroyed as soon as Wait has returned,
///   also while the Set that ended the wait is still returning.
/// (That holds for Wait alone, not for IsSet.)   [thread: any]
class MEvent {
public:
    explicit MEvent(bool set = false)
        : m_state(set ? kSet : 0) {}

    void Set();
    void Reset();
    bool IsSet() const;

    /// Waits until the event is set, at most timeoutMs; kInfinite waits for ever, 0 only looks.
    /// @return true when it was set, also when somebody has reset it since; false after the time-out.
    bool Wait(std::uint32_t timeoutMs = kInfinite);

private:
    static constexpr std::uint32_t kSet = 1;
    static constexpr std::uint32_t kAwaited = 2;    // somebody sleeps, so Set must call the system
    static constexpr std::uint32_t kGeneration = 4; // the bits above count the Sets that changed something

    static bool Releases(std::uint32_t state, std::uint32_t before) {
        return (state & kSet) != 0 || state / kGeneration != before / kGeneration;
    }
    bool SleepWhile(std::uint32_t before, std::uint32_t timeoutMs);

    std::atomic<std::uint32_t> m_state; // written by all; every change is one atomic step
};
