#pragma once

#include <cstdint>

#include "TimeText.h"

/// One position in time: a signed 32-bit count in units of a time-code type, and its text. The types are 0 to 5, from
/// 24 frames a second to milliseconds (kTimeBases). A number above 5 is taken as units a second by what reads and
/// writes texts, and as hundredths by the rest; a number below 0 counts as hundredths everywhere.
///
/// Positions may be negative and are not wrapped at 24 hours. Whatever leads beyond 32 bits gives the nearest count.
/// Nothing throws, and no text depends on the locale of the process.   [thread: any, one at a time]
class MTime {
public:
    MTime() = default;
    explicit MTime(std::int32_t value)
        : m_value(value) {}
    /// Takes type and value; the target type and the texts stay this object's own.
    MTime(const MTime& other);
    MTime& operator=(const MTime& other);
    virtual ~MTime() = default;

    /// The count stays as it is and is read in the new type. @return true when the type changed.
    bool SetType(std::int32_t type);

    /// The type of what GetConverted... gives; hundredths at first.
    void SetTargetType(std::int32_t type) { m_targetType = type; }
    std::int32_t GetTargetType() const { return m_targetType; }

    /// @return true when the value changed.
    bool SetValue(std::int32_t value);
    std::int32_t GetValue() const { return m_value; }

    /// Reads "HH:MM:SS/FF" or a free form, see TimeFromText. A text that cannot be read leaves the value as it was.
    /// @return true when the value changed.
    bool SetFromText(const char* text);

    /// "HH:MM:SS/FF". The text belongs to this object and holds until the next call.
    const char* GetText();

    /// The sum of the parts, which need not be in their ranges, with dropped labels taken out in type 3.
    /// @return true when the value changed.
    bool SetHMSF(std::int32_t hours, std::int32_t minutes, std::int32_t seconds, std::int32_t frames);

    /// The parts of the value without its sign.
    std::int32_t GetHours() const;
    std::int32_t GetMinutes() const;
    std::int32_t GetSeconds() const;
    std::int32_t GetFrames() const;

    /// The value in the target type, by way of hundredths of a second: milliseconds lose their last digit even where
    /// both types are milliseconds. "00:00:00/00" when one of the types is not 0 to 5. The text belongs to this object
    /// and holds until the next GetConverted... call.
    const char* GetConvertedText();

    /// The value itself when both types are the same, otherwise what GetConvertedText says, read in the target type: of
    /// 24 hours and more the free form takes two digits of the hours, and at most 99 milliseconds.
    std::int32_t GetConvertedValue();

    /// The field behind the "/" of GetConvertedText.
    std::int32_t GetConvertedFrames();

private:
    TimeParts Parts() const;

    std::int32_t m_type = kHundredths;
    std::int32_t m_value = 0;
    TimeTextBuffer m_text{};
    TimeTextBuffer m_convertedText{};
    std::int32_t m_targetType = kHundredths;
};
