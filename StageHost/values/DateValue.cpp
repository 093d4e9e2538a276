#include "DateValue.h"

#include <cmath>

#include "PlainNumbers.h"

namespace stagehost {

namespace {

const QDate kFirstDay(1900, 1, 1);
const QDate kLastDay(9999, 12, 31);

} // namespace

DateValue::DateValue(const ValueSpec& spec)
    : ValueFace(spec)
    , m_date(kFirstDay) {
    Configure(spec);
}

std::int32_t DateValue::ReadInt() const {
    return static_cast<std::int32_t>(kFirstDay.daysTo(m_date));
}

std::string DateValue::ReadText() const {
    return m_date.toString(QStringLiteral("dd/MM/yyyy")).toStdString();
}

HostValue::Taken DateValue::WriteInt(std::int32_t value) {
    return WriteDate(kFirstDay.addDays(value));
}

HostValue::Taken DateValue::WriteReal(double value) {
    return std::isfinite(value) ? WriteInt(RoundToInt(std::trunc(value))) : Taken::No;
}

HostValue::Taken DateValue::WriteText(std::string_view text) {
    if (text.empty())
        return WriteDate(kFirstDay);
    const QString date = QString::fromLatin1(text.data(), static_cast<int>(text.size())).trimmed();
    const bool dayFirst = date.contains(QLatin1Char('/'));
    return WriteDate(QDate::fromString(date, dayFirst ? QStringLiteral("d/M/yyyy") : QStringLiteral("yyyy-M-d")));
}

HostValue::Taken DateValue::WriteDate(const QDate& date) {
    const bool fits = date.isValid() && date >= kFirstDay && date <= kLastDay;
    return fits ? Assign(m_date, date) : Taken::No;
}

} // namespace stagehost
