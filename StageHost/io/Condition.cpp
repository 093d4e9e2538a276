#include "Condition.h"

#include <QRegularExpression>

#include "JsonNode.h"

namespace stagehost {

namespace {

/// A part without its quotes, or as it is.
QString Unquoted(const QString& part) {
    const QString text = part.trimmed();
    const bool isQuoted = text.size() > 1 && text.startsWith(QLatin1Char('"')) && text.endsWith(QLatin1Char('"'));
    return isQuoted ? text.mid(1, text.size() - 2) : text;
}

/// The place of the first sign outside quotes; -1 when there is none.
int FindSign(const QString& text, const ComparisonSign** found) {
    bool isQuoted = false;
    for (int place = 0; place < text.size(); ++place) {
        if (text.at(place) == QLatin1Char('"'))
            isQuoted = !isQuoted;
        for (const ComparisonSign& sign : kComparisonSigns) {
            if (isQuoted || !text.midRef(place).startsWith(QLatin1String(sign.sign)))
                continue;
            *found = &sign;
            return place;
        }
    }
    return -1;
}

QString SignOf(Comparison comparison) {
    for (const ComparisonSign& sign : kComparisonSigns)
        if (sign.comparison == comparison && qstrcmp(sign.sign, "==") != 0)
            return QLatin1String(sign.sign);
    return QString();
}

} // namespace

QString Condition::Text() const {
    return QStringLiteral("%1 %2 ").arg(name, SignOf(comparison)) + (value.isEmpty() ? QStringLiteral("\"\"") : value);
}

std::optional<Condition> ReadCondition(const QString& text, QString* problem) {
    const ComparisonSign* sign = nullptr;
    const int place = FindSign(text, &sign);
    Condition condition;
    if (place >= 0)
        condition = {Unquoted(text.left(place)), sign->comparison,
                     Unquoted(text.mid(place + static_cast<int>(qstrlen(sign->sign))))};
    *problem =
        place < 0 || condition.name.isEmpty()
            ? QStringLiteral("expected NAME=VALUE, or with !=, <, <=, >, >= or ~ (a pattern), not ") + Quoted(text)
            : WhyNoCondition(condition);
    return problem->isEmpty() ? std::optional(condition) : std::nullopt;
}

std::optional<Comparison> ReadSign(const QString& text) {
    for (const ComparisonSign& sign : kComparisonSigns)
        if (text == QLatin1String(sign.sign))
            return sign.comparison;
    return std::nullopt;
}

QString WhyNoCondition(const Condition& condition) {
    if (condition.comparison != Comparison::Matches)
        return {};
    const QRegularExpression pattern(condition.value);
    if (pattern.isValid())
        return {};
    return QStringLiteral("%1 is no pattern: %2, at character %3")
        .arg(Quoted(condition.value), pattern.errorString())
        .arg(pattern.patternErrorOffset() + 1);
}

} // namespace stagehost
