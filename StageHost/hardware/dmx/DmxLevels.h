#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace stagehost {

/// Channels of one universe, as DMX512 (ANSI E1.11) has them.
inline constexpr std::size_t kUniverseSize = 512;

using DmxLevels = std::array<std::uint8_t, kUniverseSize>;

/// The channels of a universe that have been told: the first count of them, the others are 0.
struct DmxFrame {
    DmxLevels levels{};
    std::size_t count = 0; ///< 0 to 512

    bool operator==(const DmxFrame& other) const { return count == other.count && levels == other.levels; }
    bool operator!=(const DmxFrame& other) const { return !(*this == other); }
};

/// Universes take the time as a parameter, so that it can be told instead of waited for.
using DmxClock = std::chrono::steady_clock;
using DmxTime = DmxClock::time_point;

} // namespace stagehost
