#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Changes texts at random: a case of a number is the same in each run, and may be made alone.
class Mutator {
public:
    /// @param seeds what is changed; not empty. @param words what is put in beside single bytes.
    Mutator(std::vector<std::string> seeds, std::vector<std::string> words)
        : m_seeds(std::move(seeds))
        , m_words(std::move(words)) {}

    /// A seed that has been changed at one to eight places.
    std::string Case(std::uint64_t number) const;

private:
    const std::vector<std::string> m_seeds;
    const std::vector<std::string> m_words;
};

/// The numbers of the cases that are to run: the first 2,000, CALVERIN_MUTATIONS of them, or CALVERIN_MUTATION alone.
struct MutationRange {
    std::uint64_t begin = 0;
    std::uint64_t end = 2000;
    static MutationRange Wanted();
};

/// Says on standard error which case ran when the process is ended by a signal. One stands at a time.
class MutationWatch {
public:
    MutationWatch();
    ~MutationWatch();
    MutationWatch(const MutationWatch&) = delete;
    MutationWatch& operator=(const MutationWatch&) = delete;
    void Begin(std::uint64_t number);
};
