#pragma once

#include <cstdint>
#include <ctime>

/// @file
/// The time of the show inside a process that has this library, in ns.   [any]

namespace stagehost::showtime {

constexpr std::int64_t kMicro = 1000;
constexpr std::int64_t kMilli = 1000 * kMicro;
constexpr std::int64_t kSecond = 1000 * kMilli;

/// Whether the process belongs to a show with a time of its own; all else here is meant for that case alone.
bool IsOn();

/// The show's monotonic clock.
std::int64_t Now();

/// What a clock of the system shows in the show's time; nothing is changed for clocks that count work.
bool Follows(clockid_t clock);
timespec Shown(clockid_t clock);

/// A moment of one of the clocks that follow, as one of the show's monotonic clock.
std::int64_t MomentOf(clockid_t clock, const timespec& time);
/// The same for a moment whose clock is not known: the clock that it is nearer to.
std::int64_t MomentOf(const timespec& time);

/// How long the system has to wait at most until a moment of the show has come or has to be looked at again; as a
/// span and as a moment of the system's monotonic clock.
timespec SpanUntil(std::int64_t moment);
timespec SystemMoment(std::int64_t moment);

timespec ToTimespec(std::int64_t time);
std::int64_t FromTimespec(const timespec& time);

} // namespace stagehost::showtime
