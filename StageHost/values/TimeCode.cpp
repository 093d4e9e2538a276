#include "TimeCode.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace stagehost {

namespace {

constexpr std::int32_t kHundredths = 4;
constexpr std::int32_t kMilliseconds = 5;

std::optional<std::int64_t> ParseField(std::string_view text) {
    std::uint32_t field = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), field);
    if (problem != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return field;
}

/// Hours, minutes, seconds and units; the units are 0 when the text ends before them.
std::optional<std::array<std::int64_t, 4>> SplitFields(std::string_view text) {
    std::array<std::int64_t, 4> fields{};
    for (std::size_t index = 0; index < fields.size(); ++index) {
        const auto end = text.find_first_of(index < 2 ? ":" : ":/.");
        const auto field = ParseField(text.substr(0, end));
        if (!field)
            return std::nullopt;
        fields[index] = *field;
        if (end == std::string_view::npos)
            return index >= 2 ? std::optional(fields) : std::nullopt;
        text.remove_prefix(end + 1);
    }
    return std::nullopt;
}

} // namespace

std::int32_t TimeCodeRate(std::int32_t type) {
    const bool known = type >= 0 && type <= kMilliseconds;
    return kTimeCodeRates[known ? type : kHundredths];
}

std::optional<std::int32_t> ParseTimeCode(std::string_view text, std::int32_t type) {
    const bool negative = !text.empty() && text.front() == '-';
    if (negative)
        text.remove_prefix(1);
    const auto fields = SplitFields(text);
    const std::int64_t rate = TimeCodeRate(type);
    if (!fields || (*fields)[1] > 59 || (*fields)[2] > 59 || (*fields)[3] > rate)
        return std::nullopt;
    const std::int64_t seconds = (*fields)[0] * 3600 + (*fields)[1] * 60 + (*fields)[2];
    if (seconds > std::numeric_limits<std::int32_t>::max())
        return std::nullopt;
    const std::int64_t units = seconds * rate + (*fields)[3];
    if (units > std::numeric_limits<std::int32_t>::max())
        return std::nullopt;
    return static_cast<std::int32_t>(negative ? -units : units);
}

std::string FormatTimeCode(std::int32_t units, std::int32_t type) {
    const std::int64_t rate = TimeCodeRate(type);
    const std::int64_t count = std::llabs(static_cast<std::int64_t>(units));
    const std::int64_t seconds = count / rate;
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%s%02d:%02d:%02d/%0*d", units < 0 ? "-" : "",
                  static_cast<int>(seconds / 3600), static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60),
                  type == kMilliseconds ? 3 : 2, static_cast<int>(count % rate));
    return text.data();
}

} // namespace stagehost
