#include "ChannelRamp.h"

#include <algorithm>
#include <cmath>

namespace stagehost {

std::int32_t ChannelRamp::ValueAt(RampClock::time_point now) const {
    if (IsOver(now))
        return to;
    const double passed = std::chrono::duration<double>(now - begin) / std::chrono::duration<double>(duration);
    const double distance = static_cast<double>(to) - from;
    return static_cast<std::int32_t>(std::lround(from + distance * std::max(0.0, passed)));
}

} // namespace stagehost
