#include "MEvent.h"

#include <chrono>

#include "TimeLimit.h"
#include "WaitAddress.h"

// Writes even when the event is set already: whoever resets it afterwards then sees what was done before this Set.
// Nothing is touched after the exchange but the bare address, since a waiter may have destroyed the event.
void MEvent::Set() {
    std::uint32_t before = m_state.load(std::memory_order_relaxed);
    std::uint32_t after = 0;
    do
        after = (before & kSet) != 0 ? before : ((before + kGeneration) & ~kAwaited) | kSet;
    while (!m_state.compare_exchange_weak(before, after, std::memory_order_acq_rel, std::memory_order_relaxed));
    if (before != after && (before & kAwaited) != 0)
        WakeAllOnAddress(&m_state);
}

void MEvent::Reset() {
    m_state.fetch_and(~kSet, std::memory_order_acq_rel);
}

bool MEvent::IsSet() const {
    return (m_state.load(std::memory_order_acquire) & kSet) != 0;
}

bool MEvent::Wait(std::uint32_t timeoutMs) {
    const std::uint32_t before = m_state.load(std::memory_order_acquire);
    if ((before & kSet) != 0)
        return true;
    return timeoutMs != 0 && SleepWhile(before, timeoutMs);
}

// The generation lets a waiter through that finds the Set which woke it already undone by a Reset.
bool MEvent::SleepWhile(std::uint32_t before, std::uint32_t timeoutMs) {
    const TimeLimit limit{std::chrono::milliseconds(timeoutMs)};
    std::uint32_t state = before;
    std::uint32_t leftMs = timeoutMs;
    while (!Releases(state, before)) {
        if ((state & kAwaited) == 0 &&
            !m_state.compare_exchange_weak(state, state | kAwaited, std::memory_order_acq_rel,
                                           std::memory_order_acquire))
            continue;
        WaitOnAddress(m_state, state | kAwaited, leftMs);
        state = m_state.load(std::memory_order_acquire);
        if (timeoutMs == kInfinite)
            continue;
        leftMs = static_cast<std::uint32_t>(limit.Left().count());
        if (leftMs == 0)
            break;
    }
    return Releases(state, before);
}
