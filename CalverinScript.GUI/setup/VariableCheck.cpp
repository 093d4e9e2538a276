#include "VariableCheck.h"

#include <array>
#include <cmath>

#include <QCoreApplication>

#include "DriverTables.h"
#include "HostText.h"
#include "MDate.h"
#include "ScriptRecords.h"
#include "TimeBase.h"
#include "TimeText.h"

namespace {

QString Say(const char* sentence) {
    return QCoreApplication::translate("VariableCheck", sentence);
}

bool IsWhole(const QString& value) {
    bool isNumber = false;
    value.toInt(&isNumber);
    return isNumber;
}

bool IsReal(const QString& value) {
    bool isNumber = false;
    return std::isfinite(value.toDouble(&isNumber)) && isNumber;
}

bool IsTime(const QString& value, const MScriptVariable& variable) {
    bool isNumber = false;
    const int type = FindProperty(variable.properties, QStringLiteral("TimeCodeType")).toInt(&isNumber);
    return TimeFromText(ToHostText(value).constData(), TextBase(isNumber && IsTimeType(type) ? type : kHundredths))
        .has_value();
}

/// The reader takes any text for some date, so the date has to read like the text.
bool IsDate(const QString& value) {
    MDate date;
    std::array<char, MDate::kTextSize> text{};
    return date.SetFromText(ToHostText(value).constData()) && FromHostText(date.GetText(text.data())) == value;
}

/// Whether the script's own value is a number, and the user's is read as one, too.
bool IsCounted(const MScriptVariable& variable) {
    return variable.valueType == QLatin1String("Integer") || variable.valueType == QLatin1String("Real");
}

QString RefusalOfItem(const QString& value, const MScriptVariable& variable) {
    const int count = variable.enumItems.size();
    if (!IsCounted(variable) && variable.enumItems.contains(value))
        return QString();
    if (!IsCounted(variable) && count > 0)
        return Say("\"%1\" is none of the items: %2.").arg(value, variable.enumItems.join(QStringLiteral(", ")));
    if (IsWhole(value) && value.toInt() >= 0 && (count == 0 || value.toInt() < count))
        return QString();
    return count == 0 ? Say("\"%1\" is not the number of an item.").arg(value)
                      : Say("\"%1\" is not the number of an item, from 0 to %2.").arg(value).arg(count - 1);
}

} // namespace

QString RefusalOf(const QString& value, const MScriptVariable& variable) {
    const QString& type = variable.type;
    if (value.isEmpty() || type == QLatin1String("StringData"))
        return QString();
    if (type == QLatin1String("EnumData"))
        return RefusalOfItem(value, variable);
    if (type == QLatin1String("RealData"))
        return IsReal(value) ? QString() : Say("\"%1\" is not a number.").arg(value);
    if (type == QLatin1String("IntegerData"))
        return IsWhole(value) ? QString() : Say("\"%1\" is not a whole number of 32 bits.").arg(value);
    if (IsCounted(variable))
        return IsReal(value) ? QString() : Say("\"%1\" is not a number, as the script's own value is.").arg(value);
    if (type == QLatin1String("TimeData"))
        return IsTime(value, variable) ? QString() : Say("\"%1\" is not a time such as 01:30:00/00.").arg(value);
    if (type == QLatin1String("DateData"))
        return IsDate(value) ? QString() : Say("\"%1\" is not a date such as 24/12/2026.").arg(value);
    return QString();
}
