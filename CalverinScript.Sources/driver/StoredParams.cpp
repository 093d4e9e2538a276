#include <cmath>
#include <limits>
#include <optional>

#include "DriverTables.h"
#include "FaceAnswer.h"
#include "HostText.h"
#include "IObjectParams.h"
#include "StoredCommand.h"

namespace {

/// A limit that a stored value has; nothing for a value without one, as which its type's own end counts.
using Limit = std::optional<double>;

template <typename Number>
Limit Unless(Number value, Number none) {
    return value != none ? Limit(static_cast<double>(value)) : std::nullopt;
}

Limit IntegerLimit(IIntegerData& data, const QString& name) {
    using Ends = std::numeric_limits<std::int32_t>;
    return name == QLatin1String("MinValue") ? Unless(data.GetMinValue(), Ends::min())
                                             : Unless(data.GetMaxValue(), Ends::max());
}

Limit RealLimit(IRealData& data, const QString& name) {
    constexpr double kEnd = 1.7e+308; // what a definition says of a real number without limits
    if (name == QLatin1String("Precision"))
        return static_cast<double>(data.GetPrecision());
    const double limit = name == QLatin1String("MinValue") ? data.GetMinValue() : data.GetMaxValue();
    return std::abs(limit) < kEnd ? Limit(limit) : std::nullopt;
}

Limit StoredLimit(IObjectParam& param, const QString& name) {
    if (auto* integer = QueryFace<IIntegerData>(&param, "IIntegerData"))
        return IntegerLimit(*integer, name);
    if (auto* real = QueryFace<IRealData>(&param, "IRealData"))
        return RealLimit(*real, name);
    if (auto* text = QueryFace<IStringData>(&param, "IStringData"))
        return text->GetMaxLength() >= 0 ? Limit(text->GetMaxLength()) : std::nullopt;
    if (auto* time = QueryFace<ITimeData>(&param, "ITimeData"))
        return static_cast<double>(time->GetTimeCodeType());
    return std::nullopt;
}

QString PropertyOf(IObjectParam& param, const char* name) {
    const char* text = param.GetProperty(name);
    return text != nullptr ? FromHostText(text) : QString();
}

bool HasLimits(IObjectParam& stored, const MScriptCommandParam& param) {
    for (const auto& property : param.properties) {
        const Limit limit = StoredLimit(stored, property.first);
        if (limit && *limit != property.second.toDouble())
            return false;
    }
    return true;
}

bool Matches(IObjectParam* stored, const MScriptCommandParam& param) {
    if (stored == nullptr)
        return false;
    QString name = PropertyOf(*stored, kParamNameProperty);
    if (name.isNull())
        name = FromHostText(stored->GetName());
    const QString direction = PropertyOf(*stored, kDirectionProperty);
    const DataKind* kind = FindDataKindOfCode(stored->GetDataType());
    return name == param.name && (direction.isNull() || direction == QLatin1String(DirectionText(param.direction))) &&
           kind != nullptr && param.type == QLatin1String(kind->element) && HasLimits(*stored, param);
}

} // namespace

bool MatchesStoredParams(const MScriptCommand& command, IObjectParams& params) {
    const auto count = static_cast<std::uint32_t>(command.params.size());
    if (params.GetParamCount() != count)
        return false;
    for (std::uint32_t i = 0; i < count; ++i)
        if (!Matches(params.GetParam(i), command.params[static_cast<int>(i)]))
            return false;
    return true;
}
