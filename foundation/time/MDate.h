#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// A date of the Gregorian calendar from 1900 on; 1 January 1900 at first, which is day number 0 and a Monday. Dates
/// that are read from a text or a day number end at 31 December 9999. The setters take any number, so that a date may
/// be built up field by field: IsValid() tells.
///
/// A format is a character '0' to '8', see DateFormat.h; 0 stands for DefaultDateFormat(). Nothing throws, and no text
/// depends on the locale of the process.   [thread: any, one at a time]
class MDate {
public:
    /// Bytes that a caller of GetText provides: enough for any three numbers and the terminator. A date up to the year
    /// 9999 takes 11.
    static constexpr std::size_t kTextSize = 36;

    /// Reads a date. Fields are cut out by their place, two digits for day and month and four for the year; a field
    /// that is not there counts as its smallest value. Day is clamped to 1 to 31, month to 1 to 12, year to 1900 to
    /// 9999. When the month is not that long, or text is null, the
    /// date stays as it was. @return true when the date was taken.
    bool SetFromText(const char* text, char format = 0);

    /// Writes the date into the caller's buffer of kTextSize bytes; null writes nothing. Characters that are no format
    /// write as '1'. @return buffer.
    char* GetText(char* buffer, char format = 0) const;

    /// Month from 1. Not clamped.
    void SetDay(std::int32_t day) { m_day = day; }
    void SetMonth(std::int32_t month) { m_month = month; }
    /// Gives February its length in that year.
    void SetYear(std::int32_t year);
    std::int32_t GetDay() const { return m_day; }
    std::int32_t GetMonth() const { return m_month; }
    std::int32_t GetYear() const { return m_year; }

    /// Days since 1 January 1900; 0 for years before. In a date that is not valid, months beyond 12 count as no further
    /// days, and a result beyond 32 bits is the nearest number.
    std::int32_t GetDayNumber() const;

    /// Below 0: 1 January 1900. From 2958463 on: 31 December 9999.
    void SetFromDayNumber(std::int32_t number);

    /// 0 Monday to 6 Sunday; -1 when the date is not valid.
    std::int32_t GetWeekday() const;

    /// True for a year from 1900, a month from 1 to 12 and a day that the month has.
    bool IsValid() const;

private:
    std::int64_t DayCount() const;

    std::int32_t m_day = 1;
    std::int32_t m_month = 1;
    std::int32_t m_year = 1900;
    std::array<std::int32_t, 12> m_daysInMonth = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
};
