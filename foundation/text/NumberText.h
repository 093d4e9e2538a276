#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Numbers as text and back. None of these looks at the locale of the process: a host that runs in German still writes
// and reads "1.5".   [thread: any]

std::string TextFromInt(std::int32_t value);

/// The shorter of plain and exponent notation, without trailing zeros, as "%.*g" prints it. Digits below 0 count as 6,
/// 0 as 1; above 800, where no double has any more, as 800.
std::string TextFromDouble(double value, std::int32_t significantDigits);

/// Plain notation, as "%.*f" prints it. Decimals below 0 count as 6, above 1100 as 1100.
std::string FixedTextFromDouble(double value, std::int32_t decimals);

/// Reads leading blanks, a sign and digits; what follows does not matter. 0 without digits; a number beyond 32 bits
/// becomes the nearest one.
std::int32_t IntFromText(std::string_view text);

/// Reads leading blanks, a sign, and a decimal number with optional fraction and exponent ("inf" and "nan" too); what
/// follows does not matter. 0 without a number; a number too large becomes infinite, one too small 0.
double DoubleFromText(std::string_view text);
