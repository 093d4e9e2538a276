#include "MisfitLog.h"

namespace {

constexpr std::uint32_t kMisfitPeriodMs = 1000;
constexpr int kMostMisfits = 3;    ///< of one variable in a period
constexpr int kLongestMisfit = 60; ///< characters of the text
constexpr int kMostItems = 12;

QString ItemsText(const QStringList& items) {
    if (items.isEmpty())
        return QString();
    const QString shown = QStringList(items.mid(0, kMostItems)).join(QStringLiteral(", "));
    return items.size() > kMostItems ? QStringLiteral(": %1, ...").arg(shown) : QStringLiteral(": ") + shown;
}

QString Shortened(const QString& text) {
    return text.size() <= kLongestMisfit ? text : text.left(kLongestMisfit) + QStringLiteral("...");
}

} // namespace

QString MisfitLog::Line(const QString& variable, const QString& text, const QString& why, const QStringList& items,
                        std::uint32_t nowMs) {
    Entry& entry = m_entries[variable];
    if (nowMs - entry.beginMs >= kMisfitPeriodMs) {
        entry.beginMs = nowMs;
        entry.told = 0;
    }
    if (entry.told >= kMostMisfits) {
        ++entry.leftOut;
        return QString();
    }
    ++entry.told;
    QString line = QStringLiteral("the variable \"") + variable + QStringLiteral("\" does not take \"") +
                   Shortened(text) + QStringLiteral("\", which ") + why + ItemsText(items);
    if (entry.leftOut > 0)
        line += QStringLiteral(" (and %1 before)").arg(entry.leftOut);
    entry.leftOut = 0;
    return line;
}
