#include "TimeValue.h"

#include <cmath>

#include "NumberText.h"
#include "TimeCode.h"

namespace stagehost {

TimeValue::TimeValue(const ValueSpec& spec)
    : ValueFace(spec) {
    Configure(spec);
}

std::int32_t TimeValue::GetTimeCodeType() {
    const std::lock_guard<std::mutex> hold(lock_);
    return timeCodeType_;
}

double TimeValue::ReadReal() const {
    return static_cast<double>(units_) / TimeCodeRate(timeCodeType_);
}

std::string TimeValue::ReadText() const {
    return FormatTimeCode(units_, timeCodeType_);
}

HostValue::Taken TimeValue::WriteReal(double value) {
    return std::isfinite(value) ? WriteInt(RoundToInt(value * TimeCodeRate(timeCodeType_))) : Taken::No;
}

HostValue::Taken TimeValue::WriteText(std::string_view text) {
    if (text.empty())
        return WriteInt(0);
    const auto units = ParseTimeCode(text, timeCodeType_);
    return units ? WriteInt(*units) : Taken::No;
}

void TimeValue::ReadLimits(const ValueSpec& spec) {
    timeCodeType_ = spec.timeCodeType;
}

} // namespace stagehost
