#include "MDate.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <string_view>

#include "DateFormat.h"
#include "NumberText.h"

namespace {

constexpr std::int32_t kFirstYear = 1900;
constexpr std::int32_t kLastYear = 9999;
constexpr std::int32_t kLastDayNumber = 2958463; // 31 December 9999
constexpr std::int32_t kLongestYear = 366;

constexpr std::int64_t LeapYearsThrough(std::int64_t year) {
    return year / 4 - year / 100 + year / 400;
}

constexpr bool IsLeapYear(std::int64_t year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

/// Days from 1 January 1900 to 1 January of a later year.
constexpr std::int64_t DaysBefore(std::int64_t year) {
    return (year - kFirstYear) * 365 + LeapYearsThrough(year - 1) - LeapYearsThrough(kFirstYear - 1);
}
static_assert(DaysBefore(2000) == 36524);
static_assert(DaysBefore(kLastYear + 1) - 1 == kLastDayNumber);

/// The field of some width that begins at a place; empty when the text ends within it.
std::string_view FieldAt(std::string_view text, std::size_t place, std::size_t width) {
    return place <= text.size() && text.size() - place >= width ? text.substr(place, width) : std::string_view();
}

struct DateFields {
    std::string_view first, behindFirstSeparator, behindSecondSeparator;
};

/// Where the three fields of a text stand. The first may be cut short by the end of the text, the others may not.
DateFields CutFields(std::string_view text, char separator, bool yearFirst) {
    const std::size_t yearWidth = 4;
    const std::size_t otherWidth = 2;
    DateFields fields{text.substr(0, yearFirst ? yearWidth : otherWidth), {}, {}};
    const std::size_t first = text.find(separator);
    if (first == std::string_view::npos)
        return fields;
    fields.behindFirstSeparator = FieldAt(text, first + 1, otherWidth);
    const std::size_t second = text.find(separator, first + 1);
    if (second != std::string_view::npos)
        fields.behindSecondSeparator = FieldAt(text, second + 1, yearFirst ? otherWidth : yearWidth);
    return fields;
}

struct NamedFields {
    std::string_view day, month, year;
};

NamedFields NameFields(const DateFields& fields, DateOrder order) {
    const auto& [first, second, third] = fields;
    if (order == DateOrder::MonthFirst)
        return {second, first, third};
    if (order == DateOrder::YearFirst)
        return {third, second, first};
    return {first, second, third};
}

} // namespace

bool MDate::SetFromText(const char* text, char format) {
    if (text == nullptr)
        return false;
    const char used = format ? format : DefaultDateFormat();
    const DateOrder order = DateOrderOf(used);
    const NamedFields fields = NameFields(CutFields(text, ReadSeparator(used), order == DateOrder::YearFirst), order);
    MDate date;
    date.SetDay(std::clamp(IntFromText(fields.day), 1, 31));
    date.SetMonth(std::clamp(IntFromText(fields.month), 1, 12));
    date.SetYear(std::clamp(IntFromText(fields.year), kFirstYear, kLastYear));
    if (!date.IsValid())
        return false;
    *this = date;
    return true;
}

char* MDate::GetText(char* buffer, char format) const {
    if (buffer == nullptr)
        return nullptr;
    const char used = format ? format : DefaultDateFormat();
    const char separator = WrittenSeparator(used);
    switch (DateOrderOf(used)) {
    case DateOrder::MonthFirst:
        std::snprintf(buffer, kTextSize, "%02d%c%02d%c%04d", m_month, separator, m_day, separator, m_year);
        break;
    case DateOrder::DayFirst:
        std::snprintf(buffer, kTextSize, "%02d%c%02d%c%04d", m_day, separator, m_month, separator, m_year);
        break;
    case DateOrder::YearFirst:
        std::snprintf(buffer, kTextSize, "%04d%c%02d%c%02d", m_year, separator, m_month, separator, m_day);
        break;
    }
    return buffer;
}

void MDate::SetYear(std::int32_t year) {
    m_year = year;
    m_daysInMonth[1] = IsLeapYear(year) ? 29 : 28;
}

std::int64_t MDate::DayCount() const {
    if (m_year < kFirstYear)
        return 0;
    std::int64_t days = DaysBefore(m_year) + m_day - 1;
    for (std::size_t month = 1; month <= m_daysInMonth.size() && static_cast<std::int64_t>(month) < m_month; ++month)
        days += m_daysInMonth[month - 1];
    return days;
}

std::int32_t MDate::GetDayNumber() const {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(DayCount(), Limits::min(), Limits::max()));
}

void MDate::SetFromDayNumber(std::int32_t number) {
    std::int64_t rest = std::clamp(number, 0, kLastDayNumber);
    std::int32_t year = kFirstYear + static_cast<std::int32_t>(rest / kLongestYear); // at most 16 years too early
    while (DaysBefore(year + 1) <= rest)
        ++year;
    rest -= DaysBefore(year);
    SetYear(year);
    std::size_t month = 0;
    while (rest >= m_daysInMonth[month])
        rest -= m_daysInMonth[month++];
    m_month = static_cast<std::int32_t>(month) + 1;
    m_day = static_cast<std::int32_t>(rest) + 1;
}

std::int32_t MDate::GetWeekday() const {
    return IsValid() ? static_cast<std::int32_t>(DayCount() % 7) : -1;
}

bool MDate::IsValid() const {
    return m_year >= kFirstYear && m_month >= 1 && m_month <= 12 && m_day >= 1 &&
           m_day <= m_daysInMonth[static_cast<std::size_t>(m_month - 1)];
}
