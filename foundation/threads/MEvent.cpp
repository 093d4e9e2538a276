#include "MEvent.h"

#include <chrono>

// Notified under the mutex: a waiter cannot return, and so cannot destroy the event, before Set has left it.
void MEvent::Set() {
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (m_set)
        return;
    m_set = true;
    ++m_generation;
    m_wake.notify_all();
}

void MEvent::Reset() {
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_set = false;
}

bool MEvent::IsSet() const {
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_set;
}

// The generation lets a waiter through that was woken by a Set and finds a later Reset already done.
bool MEvent::Wait(std::uint32_t timeoutMs) {
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_set || timeoutMs == 0)
        return m_set;
    const auto released = [this, generation = m_generation] { return m_set || m_generation != generation; };
    if (timeoutMs == kInfinite) {
        m_wake.wait(lock, released);
        return true;
    }
    return m_wake.wait_for(lock, std::chrono::milliseconds(timeoutMs), released);
}
