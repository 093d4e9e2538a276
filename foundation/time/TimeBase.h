#pragma once

#include <array>
#include <cstdint>

/// How one time-code type counts.
struct TimeBase {
    std::int32_t unitsASecond; ///< above 0; a minute has 60 times as many, an hour 3600 times
    std::int32_t frameDigits;  ///< least number of digits of the frames field in a text
    bool dropFrame;            ///< labels are dropped by the simple rule: two a minute but each tenth
    bool rounds;               ///< conversions from and to hundredths round; otherwise they cut
};

/// The time-code types: 24, 25 and 30 frames a second, 30 frames a
/// second with dropped labels, hundredths of a second, milliseconds.
inline constexpr std::array<TimeBase, 6> kTimeBases = {{
    {24, 2, false, true},
    {25, 2, false, false},
    {30, 2, false, true},
    {30, 2, true, true},
    {100, 2, false, false},
    {1000, 3, false, false},
}};
inline constexpr std::int32_t kHundredths = 4;
static_assert(kTimeBases[kHundredths].unitsASecond == 100);

constexpr bool IsTimeType(std::int32_t type) {
    return type >= 0 && type < static_cast<std::int32_t>(kTimeBases.size());
}

/// The base that counts are split and joined in. Numbers that name no type count as hundredths.   [thread: any]
TimeBase CountBase(std::int32_t type);

/// The base that texts are written and read in. A number above 5 is the number of units a second; one below 0 counts as
/// hundredths.   [thread: any]
TimeBase TextBase(std::int32_t type);

struct TimeParts {
    std::int64_t hours; ///< does not wrap at 24
    std::int64_t minutes;
    std::int64_t seconds;
    std::int64_t frames;
};

/// The parts of the absolute value of a count within plus or
/// minus 10^15; dropped labels are added back.   [thread: any]
TimeParts SplitTime(std::int64_t value, const TimeBase& base);

/// The count of some parts, with dropped labels taken out. Parts may have any value within plus or minus 10^14 and are
/// added up as they are; a sum beyond 32 bits becomes the nearest count.   [thread: any]
std::int32_t JoinTime(const TimeParts& parts, const TimeBase& base);

/// A count as hundredths of a second. Where the base rounds, a fraction above one half counts as one more, but one of a
/// negative count is cut.   [thread: any]
std::int64_t HundredthsFrom(std::int64_t value, const TimeBase& base);

/// Hundredths of a second as a count. Where the base rounds, it does
/// so away from 0 for a fraction above one half.   [thread: any]
std::int64_t FromHundredths(std::int64_t hundredths, const TimeBase& base);

/// The nearest number of 32 bits.   [thread: any]
std::int32_t NearestCount(std::int64_t value);
