#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace stagehost {

/// @file
/// A clock of its own for a process and all that it starts: the process begins anew with a library in front of the
/// C library, and a page of memory tells all of them how their time runs. It begins at the system's speed.

/// The library's file name; it stands beside the program.
inline constexpr const char* kClockLibrary = "stagehostclock.so";

/// The variable of the environment that leads a process to the clock; without it the library does nothing.
inline constexpr const char* kClockVariable = "STAGEHOST_CLOCK";

/// Begins the program anew with a clock of its own. Before any thread and anything else begins.
/// @param library the full path. @param arguments as main had them. @param wallSeconds what the wall clock then shows,
/// in s since 1970; nothing for the system's time.
/// @return why that cannot be; it does not return otherwise.   [host main]
std::string EnterOwnClock(const std::string& library, char** arguments, std::optional<std::int64_t> wallSeconds);

/// Whether this process directs a clock of its own: it has begun anew, and the library is there.   [any]
bool DirectsOwnClock();

/// Whether the process lives in the time of a show, be it another's.   [any]
bool HasOwnClock();

/// Has the process's own clock run as fast as the system's. @param mayGrow whether RunOwnClock may follow.   [host
/// main]
void RestOwnClock(bool mayGrow);

/// Has it run faster. It stands still for a moment before, until all that wait have seen that it will.   [host main]
void RunOwnClock(int speed);

/// How many times as fast as the system's the process's time runs; 1 where it has the system's.   [any]
int OwnClockSpeed();

} // namespace stagehost
