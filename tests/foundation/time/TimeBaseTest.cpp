#include <cmath>
#include <random>

#include "TimeVocabulary.h"

namespace {

/// The conversions as a floating-point calculation, the way they are told: a fraction strictly above one half adds 1.
std::int64_t RoundedUp(double number) {
    const double whole = std::trunc(number);
    return static_cast<std::int64_t>(whole) + (number - whole > 0.5 ? 1 : 0);
}

std::int64_t SimpleDrop(std::int64_t count) {
    const std::int64_t minutes = count / 1800;
    return (minutes - minutes / 10) * 2;
}

std::int64_t ExpectedHundredths(std::int64_t v, std::int32_t type) {
    const auto d = static_cast<double>(v);
    switch (type) {
    case kFilm:
        return RoundedUp(d * 100 / 24);
    case kVideo25:
        return v * 100 / 25;
    case kVideo30:
        return RoundedUp(d * 100 / 30);
    case kDropFrame:
        return RoundedUp((d + static_cast<double>(SimpleDrop(v))) * 100 / 30);
    case kMilliseconds:
        return v / 10;
    default:
        return v;
    }
}

std::int64_t ExpectedCount(std::int64_t h, std::int32_t type) {
    const double magnitude = std::abs(static_cast<double>(h));
    const std::int64_t sign = h < 0 ? -1 : 1;
    const std::int64_t thirty = RoundedUp(magnitude * 30 / 100);
    switch (type) {
    case kFilm:
        return sign * RoundedUp(magnitude * 24 / 100);
    case kVideo25:
        return h * 25 / 100;
    case kVideo30:
        return sign * thirty;
    case kDropFrame:
        return sign * (thirty - SimpleDrop(thirty));
    case kMilliseconds:
        return h * 10;
    default:
        return h;
    }
}

void ExpectConversions(std::int64_t value) {
    for (std::int32_t type = 0; type <= kMilliseconds; ++type) {
        EXPECT_EQ(HundredthsFrom(value, CountBase(type)), ExpectedHundredths(value, type)) << type << ": " << value;
        EXPECT_EQ(FromHundredths(value, CountBase(type)), ExpectedCount(value, type)) << type << ": " << value;
    }
}

} // namespace

TEST(TimeBase, HasTheUnitsOfEveryType) {
    constexpr std::int32_t kHour[] = {86400, 90000, 108000, 108000, 360000, 3600000};
    constexpr std::int32_t kMinute[] = {1440, 1500, 1800, 1800, 6000, 60000};
    for (std::int32_t type = 0; type <= kMilliseconds; ++type) {
        EXPECT_EQ(CountBase(type).unitsASecond * 3600, kHour[type]);
        EXPECT_EQ(CountBase(type).unitsASecond * 60, kMinute[type]);
        EXPECT_EQ(TextBase(type).unitsASecond, CountBase(type).unitsASecond);
        EXPECT_EQ(CountBase(type).dropFrame, type == kDropFrame);
    }
}

TEST(TimeBase, ConvertsAsTheFloatingPointCalculationDoes) {
    for (std::int64_t value = -40000; value <= 40000; ++value)
        ExpectConversions(value);
    std::mt19937 random(5);
    std::uniform_int_distribution<std::int32_t> any(kSmallest, kLargest);
    for (int i = 0; i < 20000; ++i)
        ExpectConversions(any(random));
    ExpectConversions(kSmallest);
    ExpectConversions(kLargest);
}

TEST(TimeBase, RoundsOnlyAboveOneHalf) {
    EXPECT_EQ(HundredthsFrom(3, CountBase(kFilm)), 12) << "12.5";
    EXPECT_EQ(HundredthsFrom(4, CountBase(kFilm)), 17) << "16.67";
    EXPECT_EQ(HundredthsFrom(1, CountBase(kFilm)), 4) << "4.17";
    EXPECT_EQ(FromHundredths(5, CountBase(kVideo30)), 1) << "1.5";
    EXPECT_EQ(FromHundredths(6, CountBase(kVideo30)), 2) << "1.8";
}

TEST(TimeBase, MeansItThatNegativeCountsAreCutOnTheWayToHundredthsButRoundedBack) {
    EXPECT_EQ(HundredthsFrom(-4, CountBase(kFilm)), -16) << "-16.67";
    EXPECT_EQ(HundredthsFrom(-2, CountBase(kVideo30)), -6) << "-6.67";
    EXPECT_EQ(FromHundredths(-6, CountBase(kVideo30)), -2) << "-1.8";
    EXPECT_EQ(FromHundredths(-16, CountBase(kFilm)), -4) << "-3.84";
}

TEST(TimeBase, CutsIn25FramesAndMilliseconds) {
    EXPECT_EQ(FromHundredths(7, CountBase(kVideo25)), 1) << "1.75";
    EXPECT_EQ(FromHundredths(-7, CountBase(kVideo25)), -1);
    EXPECT_EQ(HundredthsFrom(19, CountBase(kMilliseconds)), 1) << "1.9";
    EXPECT_EQ(HundredthsFrom(-19, CountBase(kMilliseconds)), -1);
}
