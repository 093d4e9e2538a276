#pragma once

#include <algorithm>
#include <chrono>

/// The moment at which a time that begins now is over, on a clock that only moves forward.   [thread: any]
class TimeLimit {
public:
    using Clock = std::chrono::steady_clock;

    explicit TimeLimit(std::chrono::milliseconds time)
        : m_end(Clock::now() + time) {}

    Clock::time_point End() const { return m_end; }
    bool IsOver() const { return Clock::now() >= m_end; }
    /// What is left of the time: 0 when it is over, at least 1 ms otherwise, so that who waits that long
    /// does not come early.
    std::chrono::milliseconds Left() const {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_end - Clock::now());
        return std::max(left, std::chrono::milliseconds(0));
    }

private:
    Clock::time_point m_end;
};
