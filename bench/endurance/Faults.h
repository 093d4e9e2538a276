#pragma once

#include <atomic>
#include <cstdint>

/// Says which calls fail: one in a hundred, scattered, and the same ones in each run of the same calls.   [any]
class Faults {
public:
    /// Counts a call. @return whether it is to fail.
    bool Strike() {
        const bool strikes = Scattered(m_calls.fetch_add(1)) % kOneIn == 0;
        m_struck += strikes ? 1 : 0;
        return strikes;
    }

    std::uint64_t Calls() const { return m_calls; }
    std::uint64_t Struck() const { return m_struck; }

private:
    static constexpr std::uint64_t kOneIn = 100;

    /// The finaliser of SplitMix64 (Steele, Lea, Flood 2014).
    static std::uint64_t Scattered(std::uint64_t number) {
        number = (number + 1) * 0x9E3779B97F4A7C15u;
        number = (number ^ (number >> 30)) * 0xBF58476D1CE4E5B9u;
        number = (number ^ (number >> 27)) * 0x94D049BB133111EBu;
        return number ^ (number >> 31);
    }

    std::atomic<std::uint64_t> m_calls{0};
    std::atomic<std::uint64_t> m_struck{0};
};
