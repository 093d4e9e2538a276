#pragma once

#include <cstdint>

/// Milliseconds of a clock that only moves forward and ignores changes of the wall clock. The count wraps at 2^32,
/// about every 49.7 days, so ages are computed as unsigned differences: `MillisecondClock() - start`.   [thread: any]
std::uint32_t MillisecondClock();
