#include "MTime.h"

#include <string_view>

#include "NumberText.h"

MTime::MTime(const MTime& other)
    : m_type(other.m_type)
    , m_value(other.m_value) {}

MTime& MTime::operator=(const MTime& other) {
    m_type = other.m_type;
    m_value = other.m_value;
    return *this;
}

bool MTime::SetType(std::int32_t type) {
    const bool changed = type != m_type;
    m_type = type;
    return changed;
}

bool MTime::SetValue(std::int32_t value) {
    const bool changed = value != m_value;
    m_value = value;
    return changed;
}

bool MTime::SetFromText(const char* text) {
    const auto value = TimeFromText(text, TextBase(m_type));
    return value && SetValue(*value);
}

const char* MTime::GetText() {
    WriteTimeText(m_value, TextBase(m_type), m_text);
    return m_text.data();
}

bool MTime::SetHMSF(std::int32_t hours, std::int32_t minutes, std::int32_t seconds, std::int32_t frames) {
    return SetValue(JoinTime({hours, minutes, seconds, frames}, CountBase(m_type)));
}

TimeParts MTime::Parts() const {
    return SplitTime(m_value, CountBase(m_type));
}

std::int32_t MTime::GetHours() const {
    return NearestCount(Parts().hours);
}

std::int32_t MTime::GetMinutes() const {
    return NearestCount(Parts().minutes);
}

std::int32_t MTime::GetSeconds() const {
    return NearestCount(Parts().seconds);
}

std::int32_t MTime::GetFrames() const {
    return NearestCount(Parts().frames);
}

const char* MTime::GetConvertedText() {
    if (IsTimeType(m_type) && IsTimeType(m_targetType)) {
        const TimeBase target = CountBase(m_targetType);
        WriteTimeText(FromHundredths(HundredthsFrom(m_value, CountBase(m_type)), target), target, m_convertedText);
    } else {
        WriteTimeText(0, CountBase(kHundredths), m_convertedText);
    }
    return m_convertedText.data();
}

std::int32_t MTime::GetConvertedValue() {
    if (m_targetType == m_type)
        return m_value;
    return TimeFromText(GetConvertedText(), TextBase(m_targetType)).value_or(0);
}

std::int32_t MTime::GetConvertedFrames() {
    const std::string_view text = GetConvertedText();
    return IntFromText(text.substr(text.find('/') + 1));
}
