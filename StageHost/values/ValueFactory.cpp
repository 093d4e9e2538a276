#include "ValueFactory.h"

#include <algorithm>
#include <iterator>

#include "DateValue.h"
#include "EnumValue.h"
#include "IntegerValue.h"
#include "PlainNumbers.h"
#include "PrivateValue.h"
#include "RealValue.h"
#include "StringValue.h"
#include "TimeValue.h"

namespace stagehost {

namespace {

template <typename Value>
std::unique_ptr<HostValue> Make(const ValueSpec& spec) {
    return std::make_unique<Value>(spec);
}

struct Maker {
    std::uint32_t code;
    std::unique_ptr<HostValue> (*make)(const ValueSpec& spec);
};

constexpr Maker kMakers[] = {
    {KXP_PRIVATE_DATA, &Make<PrivateValue>}, {KXP_INTEGER_DATA, &Make<IntegerValue>},
    {KXP_STRING_DATA, &Make<StringValue>},   {KXP_TIME_DATA, &Make<TimeValue>},
    {KXP_ENUM_DATA, &Make<EnumValue>},       {KXP_DATE_DATA, &Make<DateValue>},
    {KXP_REAL_DATA, &Make<RealValue>},
};
static_assert(std::size(kMakers) == std::size(kDataTypes), "every data type has a maker");

constexpr std::int32_t kLimitDecimals = 6;

std::string LimitText(double limit) {
    std::string text = FormatReal(limit, kLimitDecimals);
    text.erase(text.find_last_not_of('0') + 1);
    return text.back() == '.' ? text.substr(0, text.size() - 1) : text;
}

/// The limits in words; a side that has none is left out.
std::string RangeText(const ValueSpec& spec) {
    if (!spec.minimum)
        return "at most " + LimitText(*spec.maximum);
    return spec.maximum ? LimitText(*spec.minimum) + " to " + LimitText(*spec.maximum)
                        : "at least " + LimitText(*spec.minimum);
}

bool IsOutside(const ValueSpec& spec, double number) {
    return (spec.minimum && number < *spec.minimum) || (spec.maximum && number > *spec.maximum);
}

} // namespace

std::unique_ptr<HostValue> MakeValue(const ValueSpec& spec) {
    const auto* maker = std::find_if(std::begin(kMakers), std::end(kMakers),
                                     [&spec](const Maker& row) { return row.code == spec.type; });
    return maker == std::end(kMakers) ? nullptr : maker->make(spec);
}

std::string ComplaintAbout(const ValueSpec& spec, const std::string& text) {
    const auto value = MakeValue(spec);
    if (!value || !value->SetText(text))
        return "does not take \"" + text + "\"";
    const bool isNumber = spec.type == KXP_INTEGER_DATA || spec.type == KXP_REAL_DATA;
    if (isNumber && IsOutside(spec, ParseNumber(text).value_or(0)))
        return "takes " + RangeText(spec) + ", not " + text;
    if (spec.type == KXP_STRING_DATA && spec.maxLength >= 0 && text.size() > static_cast<std::size_t>(spec.maxLength))
        return "takes at most " + std::to_string(spec.maxLength) + " characters";
    return {};
}

} // namespace stagehost
