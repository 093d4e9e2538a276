#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// @file
/// Times as counts of units in one of six time-code types.   [any]

namespace stagehost {

/// Units a second of the types 0 to 5. Type 3 is drop frame and is counted here like type 2: a host at a desk needs
/// positions that can be compared, not broadcast time.
inline constexpr std::int32_t kTimeCodeRates[] = {24, 25, 30, 30, 100, 1000};

/// Units a second of a type; hundredths for a type that does not exist.
std::int32_t TimeCodeRate(std::int32_t type);

/// Reads "[-]HH:MM:SS", optionally followed by "/", "." or ":" and the units, which must be below the rate of the type
/// or equal to it.
/// @return the count of units; nothing when the text is of another form or too long a time for 32 bits.
std::optional<std::int32_t> ParseTimeCode(std::string_view text, std::int32_t type);

/// Writes "[-]HH:MM:SS/FF", with three digits for the units of type 5. Hours do not wrap at 24.
std::string FormatTimeCode(std::int32_t units, std::int32_t type);

} // namespace stagehost
