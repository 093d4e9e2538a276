#include "ValueConversion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "DriverTables.h"
#include "FaceAnswer.h"
#include "HostData.h"
#include "HostText.h"
#include "MDate.h"
#include "MTime.h"
#include "TimeText.h"

namespace {

/// Hundredths of a second: what counts where a script names no time code.
constexpr std::int32_t kDefaultTimeCodeType = 4;

std::int32_t TimeCodeOf(const ScriptProperties& properties, const char* name) {
    bool isNumber = false;
    const std::int32_t type = FindProperty(properties, QLatin1String(name)).toInt(&isNumber);
    return isNumber ? type : kDefaultTimeCodeType;
}

QString DateText(const MDate& date) {
    std::array<char, MDate::kTextSize> buffer{};
    return FromHostText(date.GetText(buffer.data()));
}

QString EnumIndex(const QString& value, bool isNumber, const QStringList& items) {
    if (isNumber)
        return QString::number(std::max(0, RoundToInt32(value.toDouble())));
    return QString::number(std::max(0, items.indexOf(value)));
}

/// A value of the host as a number. @return false when its text is none.
bool NumberOf(IData& data, double& number) {
    bool isNumber = true;
    switch (data.GetDataType()) {
    case KXP_INTEGER_DATA:
    case KXP_ENUM_DATA:
        number = data.GetIntValue();
        break;
    case KXP_REAL_DATA:
        number = data.GetRealValue();
        break;
    default:
        number = TextOf(data).toDouble(&isNumber);
    }
    return isNumber && std::isfinite(number);
}

double Clamped(double number, const ScriptProperties& properties) {
    bool isSet = false;
    const double least = FindProperty(properties, QStringLiteral("MinValue")).toDouble(&isSet);
    if (isSet)
        number = std::max(number, least);
    const double most = FindProperty(properties, QStringLiteral("MaxValue")).toDouble(&isSet);
    return isSet ? std::min(number, most) : number;
}

bool TimeToText(const MScriptCommandParam& param, IData& data, QString& text) {
    auto* face = QueryFace<ITimeData>(&data, "ITimeData");
    const std::int32_t type = face != nullptr ? face->GetTimeCodeType() : TimeCodeOf(param.properties, "TimeCodeType");
    const std::int32_t target = TimeCodeOf(param.properties, "ToTimeCodeType");
    const auto value = TimeFromText(ToHostText(TextOf(data)).constData(), TextBase(type));
    if (!value)
        return false;
    MTime time(*value);
    time.SetType(type);
    time.SetTargetType(target);
    text = FromHostText(type == target ? time.GetText() : time.GetConvertedText());
    return true;
}

} // namespace

std::int32_t RoundToInt32(double number) {
    if (std::isnan(number))
        return 0;
    const double least = std::numeric_limits<std::int32_t>::min();
    const double most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(std::round(number), least, most));
}

QString TimeTextOfFrames(double frames, std::int32_t timeCodeType) {
    MTime time;
    time.SetType(timeCodeType);
    time.SetValue(RoundToInt32(frames));
    return FromHostText(time.GetText());
}

QString DateTextOfDays(double days) {
    MDate date;
    date.SetFromDayNumber(RoundToInt32(days));
    return DateText(date);
}

QString ConvertForHost(const QString& value, const QString& type, const QString& valueType,
                       const ScriptProperties& properties, const QStringList& items) {
    const bool isNumber = valueType == QLatin1String("Integer") || valueType == QLatin1String("Real");
    if (type == QLatin1String("TimeData") && isNumber)
        return TimeTextOfFrames(value.toDouble(), TimeCodeOf(properties, "TimeCodeType"));
    if (type == QLatin1String("DateData") && isNumber)
        return DateTextOfDays(value.toDouble());
    if (type == QLatin1String("DateData")) {
        MDate date;
        date.SetFromText(ToHostText(value).constData());
        return DateText(date);
    }
    if (type == QLatin1String("EnumData"))
        return EnumIndex(value, isNumber, items);
    return value;
}

QString ConvertForHost(const MScriptVariable& variable) {
    const QString& value = variable.useDefaultScriptValue ? variable.defaultScriptValue : variable.value;
    return ConvertForHost(value, variable.type, variable.valueType, variable.properties, variable.enumItems);
}

bool ParamToText(const MScriptCommandParam& param, IData& data, QString& text) {
    double number = 0.0;
    if (param.type == QLatin1String("IntegerData") && NumberOf(data, number)) {
        text = QString::number(RoundToInt32(Clamped(number, param.properties)));
        return true;
    }
    if (param.type == QLatin1String("RealData") && NumberOf(data, number)) {
        text = QString::number(Clamped(number, param.properties), 'g', std::numeric_limits<double>::digits10);
        return true;
    }
    if (param.type == QLatin1String("TimeData"))
        return TimeToText(param, data, text);
    if (param.type == QLatin1String("EnumData") && data.GetDataType() == KXP_INTEGER_DATA) {
        text = QString::number(data.GetIntValue());
        return true;
    }
    return false;
}
