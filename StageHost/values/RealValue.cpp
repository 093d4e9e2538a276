#include "RealValue.h"

#include <algorithm>
#include <cmath>

#include "NumberText.h"

namespace stagehost {

RealValue::RealValue(const ValueSpec& spec)
    : ValueFace(spec) {
    Configure(spec);
}

double RealValue::GetMaxValue() {
    const std::lock_guard<std::mutex> hold(lock_);
    return maximum_;
}

double RealValue::GetMinValue() {
    const std::lock_guard<std::mutex> hold(lock_);
    return minimum_;
}

std::int32_t RealValue::GetPrecision() {
    const std::lock_guard<std::mutex> hold(lock_);
    return precision_;
}

std::int32_t RealValue::ReadInt() const {
    return RoundToInt(value_);
}

std::string RealValue::ReadText() const {
    return FormatReal(value_, precision_);
}

HostValue::Taken RealValue::WriteReal(double value) {
    return std::isfinite(value) ? Assign(value_, std::clamp(value, minimum_, maximum_)) : Taken::No;
}

HostValue::Taken RealValue::WriteText(std::string_view text) {
    const auto number = ParseNumber(text);
    return number ? WriteReal(*number) : Taken::No;
}

void RealValue::ReadLimits(const ValueSpec& spec) {
    minimum_ = spec.minimum.value_or(std::numeric_limits<double>::lowest());
    maximum_ = std::max(minimum_, spec.maximum.value_or(std::numeric_limits<double>::max()));
    precision_ = std::clamp(spec.precision, 0, std::numeric_limits<double>::digits10);
    value_ = std::clamp(value_, minimum_, maximum_);
}

} // namespace stagehost
