#include "IntegerValue.h"

#include <algorithm>
#include <cmath>

#include "NumberText.h"

namespace stagehost {

IntegerValue::IntegerValue(const ValueSpec& spec)
    : ValueFace(spec) {
    Configure(spec);
}

std::int32_t IntegerValue::GetMaxValue() {
    const std::lock_guard<std::mutex> hold(lock_);
    return maximum_;
}

std::int32_t IntegerValue::GetMinValue() {
    const std::lock_guard<std::mutex> hold(lock_);
    return minimum_;
}

HostValue::Taken IntegerValue::WriteInt(std::int32_t value) {
    return Assign(value_, std::clamp(value, minimum_, maximum_));
}

HostValue::Taken IntegerValue::WriteReal(double value) {
    return std::isfinite(value) ? WriteInt(RoundToInt(value)) : Taken::No;
}

HostValue::Taken IntegerValue::WriteText(std::string_view text) {
    const auto number = ParseNumber(text);
    return number ? WriteReal(*number) : Taken::No;
}

void IntegerValue::ReadLimits(const ValueSpec& spec) {
    minimum_ = RoundToInt(spec.minimum.value_or(std::numeric_limits<std::int32_t>::min()));
    maximum_ = std::max(minimum_, RoundToInt(spec.maximum.value_or(std::numeric_limits<std::int32_t>::max())));
    value_ = std::clamp(value_, minimum_, maximum_);
}

} // namespace stagehost
