#pragma once

#include <array>
#include <chrono>
#include <cstdint>

namespace stagehost {

/// How late things happen: counts in steps of 10 us, up to 10 ms; what is later counts in the last step.
class Lateness {
public:
    void Add(std::chrono::nanoseconds late) {
        const auto step = static_cast<std::size_t>(late > kStep ? late / kStep : 0);
        ++m_counts[step < m_counts.size() ? step : m_counts.size() - 1];
        ++m_total;
    }

    /// The step that a share of all (0 to 1) does not pass; 0 without any.
    std::chrono::microseconds Quantile(double share) const {
        const auto wanted = static_cast<std::uint64_t>(share * static_cast<double>(m_total));
        std::uint64_t counted = 0;
        for (std::size_t step = 0; m_total != 0 && step < m_counts.size(); ++step) {
            counted += m_counts[step];
            if (counted > wanted || counted == m_total)
                return std::chrono::duration_cast<std::chrono::microseconds>(kStep * (step + 1));
        }
        return std::chrono::microseconds(0);
    }

    std::uint64_t Total() const { return m_total; }

private:
    static constexpr std::chrono::nanoseconds kStep{10000};
    std::array<std::uint32_t, 1000> m_counts{};
    std::uint64_t m_total = 0;
};

} // namespace stagehost
