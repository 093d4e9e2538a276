#include "NearTexts.h"

#include <algorithm>
#include <cstdlib>

#include "NearNames.h"

namespace stagehost {

namespace {

constexpr std::size_t kMostCompared = 256; // each takes the product of both lengths

/// Letters that one text has and the other has not: each has to be changed at least.
template <typename Letters>
int LeastDistance(const Letters& one, const Letters& other) {
    int missing = 0;
    int added = 0;
    for (std::size_t letter = 0; letter < one.size(); ++letter) {
        const int more = one[letter] - other[letter];
        (more > 0 ? missing : added) += std::abs(more);
    }
    return std::max(missing, added);
}

} // namespace

NearTexts::Letters NearTexts::LettersOf(const QString& text) {
    Letters letters{};
    for (const QChar letter : text.toCaseFolded())
        ++letters[letter.unicode() % letters.size()];
    return letters;
}

void NearTexts::Add(const QString& text) {
    const QString compared = text.left(kLongestCompared);
    m_texts.push_back({compared, LettersOf(compared)});
}

std::size_t NearTexts::Nearest(const QString& text) const {
    struct Candidate {
        int least;
        std::size_t place;
        bool operator<(const Candidate& other) const {
            return least != other.least ? least < other.least : place < other.place;
        }
    };
    const QString compared = text.left(kLongestCompared);
    const Letters letters = LettersOf(compared);
    std::vector<Candidate> candidates;
    candidates.reserve(m_texts.size());
    for (const Text& known : m_texts)
        candidates.push_back({LeastDistance(letters, known.letters), candidates.size()});
    const std::size_t count = std::min(kMostCompared, candidates.size());
    std::partial_sort(candidates.begin(), candidates.begin() + static_cast<std::ptrdiff_t>(count), candidates.end());
    Candidate nearest{0, m_texts.size()};
    for (std::size_t at = 0; at < count; ++at) {
        const Candidate& candidate = candidates[at];
        if (nearest.place < m_texts.size() && candidate.least > nearest.least)
            break;
        const Candidate found{DistanceBetween(compared, m_texts[candidate.place].text), candidate.place};
        nearest = nearest.place == m_texts.size() ? found : std::min(nearest, found);
    }
    return nearest.place;
}

} // namespace stagehost
