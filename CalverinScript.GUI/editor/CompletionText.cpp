#include "CompletionText.h"

#include <QVariant>

#include <algorithm>

namespace {

/// The place beside the first sign, at the given distance; a sign that comes first or not at all has none beside it.
int PlaceBeside(const QString& text, QChar sign, int distance) {
    const int at = text.indexOf(sign);
    return at > 0 ? at + distance : 0;
}

} // namespace

QString CompletionText(const QModelIndex& entry) {
    const QVariant inserted = entry.data(Qt::UserRole);
    const QVariant shown = entry.data(Qt::DisplayRole);
    return (inserted.isValid() && !inserted.isNull() ? inserted : shown).toString();
}

int CaretOffset(const QString& text) {
    const int beforeComma = PlaceBeside(text, QLatin1Char(','), -1);
    const int behindQuote = PlaceBeside(text, QLatin1Char('"'), 1);
    if (beforeComma >= 1 && behindQuote >= 1)
        return std::min(beforeComma, behindQuote);
    return std::max(beforeComma, behindQuote);
}
