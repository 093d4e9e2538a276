#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// @file
/// Numbers and their texts, with a point for the decimals whatever the locale.   [any]

namespace stagehost {

/// The number that a text is, blanks around it aside; nothing for any other text and for values that are not finite.
std::optional<double> ParseNumber(std::string_view text);

/// The nearest whole number within 32 bits; 0 for what is no number.
std::int32_t RoundToInt(double value);

/// The number with that many decimals; very large ones in the form with an exponent.
std::string FormatReal(double value, std::int32_t decimals);

} // namespace stagehost
