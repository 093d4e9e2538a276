#include "DropCount.h"

#include <utility>

void DropCount::Add() {
    const std::lock_guard<std::mutex> guard(m_lock);
    ++m_count;
}

std::int32_t DropCount::TakeAtTick(std::uint32_t nowMs) {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (m_count == 0)
        return 0;
    if (m_countAtTick == 0)
        m_firstTickMs = nowMs;
    const bool goesOn = m_count != m_countAtTick;
    if (goesOn && nowMs - m_firstTickMs < kLongestMs) {
        m_countAtTick = m_count;
        return 0;
    }
    m_countAtTick = 0;
    return std::exchange(m_count, 0);
}

std::int32_t DropCount::TakeAll() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_countAtTick = 0;
    return std::exchange(m_count, 0);
}
