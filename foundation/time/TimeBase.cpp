#include "TimeBase.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace {

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 3600;
constexpr std::int64_t kUnitsADropMinute = 1800;

/// The labels that the simple rule drops up to a count. Adding and taking out both ask with the count that they are
/// given, one of frames and one of labels, so they are not each other's inverse.
std::int64_t DroppedLabels(std::int64_t count) {
    const std::int64_t minutes = count / kUnitsADropMinute;
    return (minutes - minutes / 10) * 2;
}

std::int64_t Quotient(std::int64_t number, std::int64_t divisor, bool rounds) {
    const std::int64_t rest = number % divisor;
    return number / divisor + (rounds && rest * 2 > divisor ? 1 : 0);
}

} // namespace

std::int32_t NearestCount(std::int64_t value) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

TimeBase CountBase(std::int32_t type) {
    return kTimeBases[static_cast<std::size_t>(IsTimeType(type) ? type : kHundredths)];
}

TimeBase TextBase(std::int32_t type) {
    if (type < 0 || IsTimeType(type))
        return CountBase(type);
    return {type, 2, false, false};
}

TimeParts SplitTime(std::int64_t value, const TimeBase& base) {
    std::int64_t rest = std::abs(value);
    if (base.dropFrame)
        rest += DroppedLabels(rest);
    const std::int64_t seconds = rest / base.unitsASecond;
    return {seconds / kHour, seconds % kHour / kMinute, seconds % kMinute, rest % base.unitsASecond};
}

std::int32_t JoinTime(const TimeParts& parts, const TimeBase& base) {
    const std::int64_t seconds = NearestCount(parts.hours * kHour + parts.minutes * kMinute + parts.seconds);
    std::int64_t value = seconds * base.unitsASecond + parts.frames;
    if (base.dropFrame)
        value -= DroppedLabels(value);
    return NearestCount(value);
}

std::int64_t HundredthsFrom(std::int64_t value, const TimeBase& base) {
    if (base.dropFrame)
        value += DroppedLabels(value);
    return Quotient(value * 100, base.unitsASecond, base.rounds);
}

std::int64_t FromHundredths(std::int64_t hundredths, const TimeBase& base) {
    std::int64_t value = Quotient(std::abs(hundredths) * base.unitsASecond, 100, base.rounds);
    if (base.dropFrame)
        value -= DroppedLabels(value);
    return hundredths < 0 ? -value : value;
}
