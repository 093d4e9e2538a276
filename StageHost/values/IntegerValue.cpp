#include "IntegerValue.h"

#include <algorithm>
#include <cmath>

#include "PlainNumbers.h"

namespace stagehost {

IntegerValue::IntegerValue(const ValueSpec& spec)
    : ValueFace(spec) {
    Configure(spec);
}

std::int32_t IntegerValue::GetMaxValue() {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_maximum;
}

std::int32_t IntegerValue::GetMinValue() {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_minimum;
}

HostValue::Taken IntegerValue::WriteInt(std::int32_t value) {
    return Assign(m_value, std::clamp(value, m_minimum, m_maximum));
}

HostValue::Taken IntegerValue::WriteReal(double value) {
    return std::isfinite(value) ? WriteInt(RoundToInt(value)) : Taken::No;
}

HostValue::Taken IntegerValue::WriteText(std::string_view text) {
    const auto number = ParseNumber(text);
    return number ? WriteReal(*number) : Taken::No;
}

void IntegerValue::ReadLimits(const ValueSpec& spec) {
    m_minimum = RoundToInt(spec.minimum.value_or(std::numeric_limits<std::int32_t>::min()));
    m_maximum = std::max(m_minimum, RoundToInt(spec.maximum.value_or(std::numeric_limits<std::int32_t>::max())));
    m_value = std::clamp(m_value, m_minimum, m_maximum);
}

} // namespace stagehost
