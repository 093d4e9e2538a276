#pragma once

#include <optional>

#include <QString>

namespace stagehost {

/// How a condition compares.
enum class Comparison { Is, IsNot, Below, AtMost, Above, AtLeast, Matches };

struct ComparisonSign {
    const char* sign;
    Comparison comparison;
};

/// The signs of conditions; longer ones stand before what they begin with.
inline constexpr ComparisonSign kComparisonSigns[] = {
    {"!=", Comparison::IsNot}, {"<=", Comparison::AtMost}, {">=", Comparison::AtLeast}, {"==", Comparison::Is},
    {"=", Comparison::Is},     {"<", Comparison::Below},   {">", Comparison::Above},    {"~", Comparison::Matches},
};

/// What is waited for: `NAME SIGN VALUE`, as show files, lines of `watch` and --wait have it.
struct Condition {
    QString name;
    Comparison comparison = Comparison::Is;
    QString value;

    /// "Level >= 50", for people.
    QString Text() const;
};

/// Reads `NAME SIGN VALUE`; blanks around the parts count for nothing, a part in double quotes is taken as it is.
/// @param problem receives, for a text that is no condition, what is wrong.   [any]
std::optional<Condition> ReadCondition(const QString& text, QString* problem);

/// The comparison of a sign that stands by itself; nothing for other texts.   [any]
std::optional<Comparison> ReadSign(const QString& text);

/// What is wrong with the value for that comparison, such as a pattern that is none; empty when nothing is.   [any]
QString WhyNoCondition(const Condition& condition);

} // namespace stagehost
