#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "TimeBase.h"

/// "HH:MM:SS/FF" with its terminator: room for the longest 32-bit count of every type from 0 to 5.
using TimeTextBuffer = std::array<char, 16>;

/// Writes a count as "HH:MM:SS/FF" ("HH:MM:SS/FFF" in milliseconds), a "-" in front when it is negative. What does not
/// fit into 15 characters (a base of millions of units a second) is cut off at the end.   [thread: any]
void WriteTimeText(std::int64_t value, const TimeBase& base, TimeTextBuffer& text);

/// Reads a count: "HH:MM:SS/FF", or digits typed in a hurry such as "12", "1.5", "12:" (minutes) and "1::" (hours).
/// 15 characters count, 14 behind a sign. The empty text is 0; null, a lone sign and any other text are nothing. A
/// value beyond 32 bits becomes the nearest count.   [thread: any]
std::optional<std::int32_t> TimeFromText(const char* text, const TimeBase& base);
