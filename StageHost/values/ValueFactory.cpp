#include "ValueFactory.h"

#include <algorithm>
#include <iterator>

#include "DateValue.h"
#include "EnumValue.h"
#include "IntegerValue.h"
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

} // namespace

std::unique_ptr<HostValue> MakeValue(const ValueSpec& spec) {
    const auto* maker = std::find_if(std::begin(kMakers), std::end(kMakers),
                                     [&spec](const Maker& row) { return row.code == spec.type; });
    return maker == std::end(kMakers) ? nullptr : maker->make(spec);
}

} // namespace stagehost
