#include "PlainNumbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include <QByteArray>
#include <QLocale>
#include <QString>

namespace stagehost {

namespace {

constexpr std::string_view kBlanks = " \t\r\n\f\v";
constexpr double kLargestPlain = 1e15; // beyond it decimals carry no information

std::string_view Trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

} // namespace

std::optional<double> ParseNumber(std::string_view text) {
    text = Trimmed(text);
    if (text.size() > 1 && text.front() == '+' && text[1] != '-')
        text.remove_prefix(1);
    double value = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || problem != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::int32_t RoundToInt(double value) {
    if (std::isnan(value))
        return 0;
    constexpr double low = std::numeric_limits<std::int32_t>::min();
    constexpr double high = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(std::round(value), low, high));
}

std::string FormatReal(double value, std::int32_t decimals) {
    const bool plain = std::abs(value) < kLargestPlain;
    return plain ? QByteArray::number(value, 'f', decimals).toStdString()
                 : QString::number(value, 'g', QLocale::FloatingPointShortest).toStdString();
}

} // namespace stagehost
