#include "Mutator.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <random>

#include <unistd.h>

namespace {

constexpr std::size_t kLongest = 64 * 1024; ///< beyond that a case only takes longer

using Random = std::mt19937_64;

std::size_t Below(Random& random, std::size_t limit) {
    return limit == 0 ? 0 : static_cast<std::size_t>(random() % limit);
}

std::string Piece(Random& random, const std::string& text) {
    const std::size_t begin = Below(random, text.size());
    return text.substr(begin, 1 + Below(random, 40));
}

void ChangeOnce(Random& random, std::string& text, const std::vector<std::string>& seeds,
                const std::vector<std::string>& words) {
    const std::size_t at = Below(random, text.size() + 1);
    const std::size_t size = std::min(Below(random, 20) + 1, text.size() - at);
    switch (Below(random, 8)) {
    case 0:
        if (at < text.size())
            text[at] = static_cast<char>(text[at] ^ (1 << Below(random, 8)));
        break;
    case 1:
        text.insert(at, 1, static_cast<char>(Below(random, 256)));
        break;
    case 2:
        text.erase(at, size);
        break;
    case 3:
        text.insert(at, words[Below(random, words.size())]);
        break;
    case 4:
        text.replace(at, size, words[Below(random, words.size())]);
        break;
    case 5:
        text.insert(at, Piece(random, text));
        break;
    case 6:
        text.replace(at, size, Piece(random, seeds[Below(random, seeds.size())]));
        break;
    default:
        if (Below(random, 4) == 0)
            text.resize(at); // torn
    }
}

std::uint64_t NumberOf(const char* variable, std::uint64_t otherwise) {
    const char* text = std::getenv(variable);
    return text != nullptr ? std::strtoull(text, nullptr, 10) : otherwise;
}

std::atomic<std::uint64_t> current{0};

constexpr std::array<int, 4> kEnds = {SIGSEGV, SIGABRT, SIGFPE, SIGBUS};

extern "C" void TellCase(int number) {
    std::array<char, 64> text{};
    const char begin[] = "\ncase CALVERIN_MUTATION=";
    char* end = std::copy(std::begin(begin), std::end(begin) - 1, text.data());
    end = std::to_chars(end, text.data() + text.size() - 1, current.load()).ptr;
    *end++ = '\n';
    static_cast<void>(!write(STDERR_FILENO, text.data(), static_cast<std::size_t>(end - text.data())));
    std::signal(number, SIG_DFL);
    std::raise(number);
}

} // namespace

std::string Mutator::Case(std::uint64_t number) const {
    Random random(number);
    std::string text = m_seeds[Below(random, m_seeds.size())];
    for (std::size_t changes = 1 + Below(random, 8); changes > 0; --changes)
        ChangeOnce(random, text, m_seeds, m_words);
    text.resize(std::min(text.size(), kLongest));
    return text;
}

MutationRange MutationRange::Wanted() {
    const std::uint64_t none = ~std::uint64_t{0};
    const std::uint64_t one = NumberOf("CALVERIN_MUTATION", none);
    if (one != none)
        return {one, one + 1};
    return {0, NumberOf("CALVERIN_MUTATIONS", MutationRange().end)};
}

MutationWatch::MutationWatch() {
    for (const int end : kEnds)
        std::signal(end, &TellCase);
}

MutationWatch::~MutationWatch() {
    for (const int end : kEnds)
        std::signal(end, SIG_DFL);
}

void MutationWatch::Begin(std::uint64_t number) {
    current = number;
}
