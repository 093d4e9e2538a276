#include "NearNames.h"

#include <algorithm>
#include <vector>

namespace stagehost {

namespace {

constexpr int kMostListed = 12;

/// One letter of three may be wrong, of two or three one; nothing is near a single letter.
int MostWrong(const QString& name) {
    return std::min(std::max(1, name.size() / 3), name.size() - 1);
}

QString ListOf(const QStringList& known) {
    const QString text = QStringList(known.mid(0, kMostListed)).join(QStringLiteral(", "));
    return known.size() <= kMostListed ? text : text + QStringLiteral(" and %1 more").arg(known.size() - kMostListed);
}

} // namespace

int DistanceBetween(const QString& one, const QString& other) {
    const QString a = one.left(kLongestCompared).toCaseFolded();
    const QString b = other.left(kLongestCompared).toCaseFolded();
    const auto width = static_cast<std::size_t>(b.size()) + 1;
    std::vector<int> beforeLast(width), last(width), row(width);
    for (std::size_t column = 0; column < width; ++column)
        row[column] = static_cast<int>(column);
    for (int i = 1; i <= a.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        row[0] = i;
        for (int j = 1; j <= b.size(); ++j) {
            const auto column = static_cast<std::size_t>(j);
            const int changed = last[column - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[column] = std::min({changed, last[column] + 1, row[column - 1] + 1});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[column] = std::min(row[column], beforeLast[column - 2] + 1);
        }
    }
    return row[width - 1];
}

QString NearestName(const QString& name, const QStringList& known) {
    QString nearest;
    int distance = MostWrong(name) + 1;
    for (const QString& candidate : known) {
        const int found = candidate == name ? distance : DistanceBetween(name, candidate);
        if (found < distance) {
            distance = found;
            nearest = candidate;
        }
    }
    return nearest;
}

QString NamesInstead(const QString& name, const QStringList& known) {
    if (known.isEmpty())
        return {};
    const QString nearest = NearestName(name, known);
    if (nearest.isEmpty())
        return QStringLiteral("; there are: ") + ListOf(known);
    const QString question = QStringLiteral("; did you mean \"%1\"?").arg(nearest);
    return known.size() == 1 ? question : question + QStringLiteral(" There are: ") + ListOf(known);
}

} // namespace stagehost
