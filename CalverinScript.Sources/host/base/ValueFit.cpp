#include "ValueFit.h"

#include <cmath>
#include <limits>

#include "FaceAnswer.h"
#include "HostText.h"

namespace {

QString HeldText(IData& data) {
    char* text = data.GetValueAsString();
    QString copy = FromHostText(text);
    if (text != nullptr)
        data.ReleaseString(&text);
    return copy;
}

/// " from 0 to 100"; empty where the limits shut nothing out.
QString RangeText(double least, double most, double widest) {
    if (least >= most || (least <= -widest && most >= widest))
        return QString();
    return QStringLiteral(" from %1 to %2").arg(least, 0, 'g', 10).arg(most, 0, 'g', 10);
}

QString WhyNoNumber(const QString& text, const char* kind, double least, double most, double widest) {
    bool isNumber = false;
    const double number = text.trimmed().toDouble(&isNumber);
    const QString range = RangeText(least, most, widest);
    const bool fits = isNumber && std::isfinite(number) && (range.isEmpty() || (number >= least && number <= most));
    return fits ? QString() : QStringLiteral("is no %1%2").arg(QLatin1String(kind), range);
}

/// An enumeration takes an item, or the index of one.
QString WhyNoItem(IData& data, const QString& text) {
    bool isNumber = false;
    const double index = text.trimmed().toDouble(&isNumber);
    if (HeldText(data) == text || (isNumber && std::abs(data.GetIntValue() - index) < 1))
        return QString();
    return QStringLiteral("is none of its items");
}

} // namespace

bool CanMisfit(KXPDataType type) {
    return type == KXP_INTEGER_DATA || type == KXP_REAL_DATA || type == KXP_ENUM_DATA;
}

QString WhyMisfit(IData& data, const QString& text) {
    const auto type = static_cast<KXPDataType>(data.GetDataType());
    if (type == KXP_ENUM_DATA)
        return WhyNoItem(data, text);
    if (type == KXP_INTEGER_DATA) {
        auto* face = QueryFace<IIntegerData>(&data, "IIntegerData");
        constexpr double kWidest = std::numeric_limits<std::int32_t>::max();
        return WhyNoNumber(text, "whole number", face != nullptr ? face->GetMinValue() : 0,
                           face != nullptr ? face->GetMaxValue() : 0, kWidest);
    }
    if (type == KXP_REAL_DATA) {
        auto* face = QueryFace<IRealData>(&data, "IRealData");
        constexpr double kWidest = 1.7e308; // what hosts have for "no limit"
        return WhyNoNumber(text, "number", face != nullptr ? face->GetMinValue() : 0,
                           face != nullptr ? face->GetMaxValue() : 0, kWidest);
    }
    return QString();
}
