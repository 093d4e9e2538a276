#include "NameGuess.h"

#include <algorithm>
#include <vector>

namespace {

/// Changes of one letter between two names, an exchange of neighbours counting as one (the optimal string alignment
/// distance).
int DistanceOf(const QString& left, const QString& right) {
    const int width = right.size() + 1;
    std::vector<int> before(static_cast<std::size_t>(width)), above(before), row(before);
    for (int j = 0; j < width; ++j)
        above[static_cast<std::size_t>(j)] = j;
    for (int i = 1; i <= left.size(); ++i) {
        row[0] = i;
        for (int j = 1; j < width; ++j) {
            const auto at = static_cast<std::size_t>(j);
            const bool same = left[i - 1] == right[j - 1];
            row[at] = std::min({above[at] + 1, row[at - 1] + 1, above[at - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1])
                row[at] = std::min(row[at], before[at - 2] + 1);
        }
        before.swap(above);
        above.swap(row);
    }
    return above.back();
}

} // namespace

QString Nearest(const QString& wrong, const QStringList& names) {
    constexpr int kLongest = 64;
    if (wrong.size() > kLongest)
        return QString();
    QString nearest;
    int least = wrong.size() < 4 ? 2 : 3; // what is as far as this is another word
    for (const QString& name : names) {
        const int distance =
            name.compare(wrong, Qt::CaseInsensitive) == 0 ? 0 : DistanceOf(wrong.toLower(), name.toLower());
        if (distance < least) {
            least = distance;
            nearest = name;
        }
    }
    return nearest;
}

QString MayBeMeant(const QString& wrong, const QStringList& names) {
    const QString nearest = Nearest(wrong, names);
    return nearest.isEmpty() ? QString() : QStringLiteral(", it may be meant as %1").arg(nearest);
}
