#include "NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <system_error>

namespace {

constexpr std::int32_t kDefaultPrecision = 6; // of printf
constexpr std::int32_t kMostDigits = 800;     // a double has at most 767 significant digits
constexpr std::int32_t kMostDecimals = 1100;  // and at most 1074 decimals
constexpr std::size_t kLongestText = 1500;    // sign, 309 digits, point, decimals

std::string Printed(double value, std::chars_format form, std::int32_t precision) {
    std::array<char, kLongestText> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, form, precision);
    return {buffer.data(), result.ptr};
}

std::int32_t Precision(std::int32_t wanted, std::int32_t most) {
    return wanted < 0 ? kDefaultPrecision : std::min(wanted, most);
}

/// Cuts blanks and a sign off the front. @return true for "-".
bool CutSign(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = !text.empty() && text.front() == '-';
    if (negative || (!text.empty() && text.front() == '+'))
        text.remove_prefix(1);
    return negative;
}

/// The power of ten of a number's first digit that is not 0, plus 1: 3 for "123", -1 for "0.0012". The number has one.
std::int64_t Magnitude(std::string_view number) {
    const std::size_t end = std::min(number.find_first_of("eE"), number.size());
    std::int64_t exponent = 0;
    if (end < number.size()) {
        std::string_view tail = number.substr(end + 1);
        const bool negative = CutSign(tail);
        const auto read = std::from_chars(tail.data(), tail.data() + tail.size(), exponent);
        if (read.ec == std::errc::result_out_of_range)
            exponent = std::numeric_limits<std::int32_t>::max();
        exponent = negative ? -exponent : exponent;
    }
    const auto point = static_cast<std::int64_t>(std::min(number.find('.'), end));
    const auto first = static_cast<std::int64_t>(number.find_first_of("123456789"));
    return exponent + point - first + (first > point ? 1 : 0);
}

} // namespace

std::string TextFromInt(std::int32_t value) {
    return std::to_string(value);
}

std::string TextFromDouble(double value, std::int32_t significantDigits) {
    return Printed(value, std::chars_format::general, Precision(significantDigits, kMostDigits));
}

std::string FixedTextFromDouble(double value, std::int32_t decimals) {
    return Printed(value, std::chars_format::fixed, Precision(decimals, kMostDecimals));
}

std::int32_t IntFromText(std::string_view text) {
    const bool negative = CutSign(text);
    std::uint32_t magnitude = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), magnitude);
    if (read.ec == std::errc::result_out_of_range)
        magnitude = std::numeric_limits<std::uint32_t>::max();
    const std::int64_t value = negative ? -static_cast<std::int64_t>(magnitude) : static_cast<std::int64_t>(magnitude);
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, std::numeric_limits<std::int32_t>::min(),
                                                              std::numeric_limits<std::int32_t>::max()));
}

double DoubleFromText(std::string_view text) {
    const bool negative = CutSign(text);
    if (text.empty() || text.front() == '-') // from_chars would take a second sign
        return 0;
    double value = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    if (read.ec == std::errc::result_out_of_range) {
        const std::string_view number(text.data(), static_cast<std::size_t>(read.ptr - text.data()));
        value = Magnitude(number) > 0 ? std::numeric_limits<double>::infinity() : 0;
    }
    return negative ? -value : value;
}
