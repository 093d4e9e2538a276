#pragma once

#include <chrono>
#include <cstdint>

namespace stagehost {

using RampClock = std::chrono::steady_clock;

/// A value that moves evenly from one to another.
struct ChannelRamp {
    std::int32_t from = 0;
    std::int32_t to = 0;
    RampClock::time_point begin;
    std::chrono::milliseconds duration{0};

    /// The value at that time, rounded to the nearest; to at the end and after.
    std::int32_t ValueAt(RampClock::time_point now) const;
    bool IsOver(RampClock::time_point now) const { return now - begin >= duration; }
};

} // namespace stagehost
