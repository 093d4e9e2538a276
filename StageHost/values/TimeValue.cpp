#include "TimeValue.h"

#include <cmath>

#include "PlainNumbers.h"
#include "TimeCode.h"

namespace stagehost {

TimeValue::TimeValue(const ValueSpec& spec)
    : ValueFace(spec) {
    Configure(spec);
}

std::int32_t TimeValue::GetTimeCodeType() {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_timeCodeType;
}

double TimeValue::ReadReal() const {
    return static_cast<double>(m_units) / TimeCodeRate(m_timeCodeType);
}

std::string TimeValue::ReadText() const {
    return FormatTimeCode(m_units, m_timeCodeType);
}

HostValue::Taken TimeValue::WriteReal(double value) {
    return std::isfinite(value) ? WriteInt(RoundToInt(value * TimeCodeRate(m_timeCodeType))) : Taken::No;
}

HostValue::Taken TimeValue::WriteText(std::string_view text) {
    if (text.empty())
        return WriteInt(0);
    const auto units = ParseTimeCode(text, m_timeCodeType);
    return units ? WriteInt(*units) : Taken::No;
}

void TimeValue::ReadLimits(const ValueSpec& spec) {
    m_timeCodeType = spec.timeCodeType;
}

} // namespace stagehost
