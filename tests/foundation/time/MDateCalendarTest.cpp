#include <gtest/gtest.h>

#include "MDate.h"

namespace {

constexpr std::int64_t kJulianDayOfFirst = 2415021; // 1 January 1900
constexpr std::int64_t kJulianDayOfLast = 5373484;  // 31 December 9999

/// The Julian day of a Gregorian date, after H. F. Fliegel and T. C. Van Flandern, "A machine algorithm for processing
/// calendar dates", Communications of the ACM 11 (10), 1968, page 657.
std::int64_t JulianDay(std::int64_t year, std::int64_t month, std::int64_t day) {
    const std::int64_t shift = (month - 14) / 12;
    return day - 32075 + 1461 * (year + 4800 + shift) / 4 + 367 * (month - 2 - shift * 12) / 12 -
           3 * ((year + 4900 + shift) / 100) / 4;
}

struct Day {
    std::int64_t year, month, day;
};

/// The way back, from the same page.
Day GregorianDay(std::int64_t julianDay) {
    std::int64_t l = julianDay + 68569;
    const std::int64_t n = 4 * l / 146097;
    l -= (146097 * n + 3) / 4;
    const std::int64_t i = 4000 * (l + 1) / 1461001;
    l += 31 - 1461 * i / 4;
    const std::int64_t j = 80 * l / 2447;
    const std::int64_t k = j / 11;
    return {100 * (n - 49) + i + k, j + 2 - 12 * k, l - 2447 * j / 80};
}

} // namespace

TEST(MDateCalendar, AgreesWithJulianDaysFrom1900To9999) {
    ASSERT_EQ(JulianDay(1900, 1, 1), kJulianDayOfFirst);
    ASSERT_EQ(JulianDay(9999, 12, 31), kJulianDayOfLast);
    MDate date;
    for (std::int64_t julianDay = kJulianDayOfFirst; julianDay <= kJulianDayOfLast; ++julianDay) {
        const auto number = static_cast<std::int32_t>(julianDay - kJulianDayOfFirst);
        const Day expected = GregorianDay(julianDay);
        date.SetFromDayNumber(number);
        ASSERT_TRUE(date.GetYear() == expected.year && date.GetMonth() == expected.month &&
                    date.GetDay() == expected.day)
            << number;
        ASSERT_EQ(date.GetDayNumber(), number);
        ASSERT_EQ(date.GetWeekday(), julianDay % 7) << number; // Julian days begin with a Monday
    }
}

TEST(MDateCalendar, HasEveryDayThatJulianDaysHaveAndNoOther) {
    MDate date;
    for (std::int32_t year = 1900; year <= 9999; ++year)
        for (std::int32_t month = 1; month <= 12; ++month) {
            const std::int64_t length =
                JulianDay(month == 12 ? year + 1 : year, month % 12 + 1, 1) - JulianDay(year, month, 1);
            date.SetYear(year);
            date.SetMonth(month);
            for (std::int32_t day = 27; day <= 32; ++day) {
                date.SetDay(day);
                ASSERT_EQ(date.IsValid(), day <= length) << day << "." << month << "." << year;
            }
        }
}
