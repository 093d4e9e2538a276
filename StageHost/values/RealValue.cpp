#include "RealValue.h"

#include <algorithm>
#include <cmath>

#include "PlainNumbers.h"

namespace stagehost {

RealValue::RealValue(const ValueSpec& spec)
    : ValueFace(spec) {
    Configure(spec);
}

double RealValue::GetMaxValue() {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_maximum;
}

double RealValue::GetMinValue() {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_minimum;
}

std::int32_t RealValue::GetPrecision() {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_precision;
}

std::int32_t RealValue::ReadInt() const {
    return RoundToInt(m_value);
}

std::string RealValue::ReadText() const {
    return FormatReal(m_value, m_precision);
}

HostValue::Taken RealValue::WriteReal(double value) {
    return std::isfinite(value) ? Assign(m_value, std::clamp(value, m_minimum, m_maximum)) : Taken::No;
}

HostValue::Taken RealValue::WriteText(std::string_view text) {
    const auto number = ParseNumber(text);
    return number ? WriteReal(*number) : Taken::No;
}

void RealValue::ReadLimits(const ValueSpec& spec) {
    m_minimum = spec.minimum.value_or(std::numeric_limits<double>::lowest());
    m_maximum = std::max(m_minimum, spec.maximum.value_or(std::numeric_limits<double>::max()));
    m_precision = std::clamp(spec.precision, 0, std::numeric_limits<double>::digits10);
    m_value = std::clamp(m_value, m_minimum, m_maximum);
}

} // namespace stagehost
