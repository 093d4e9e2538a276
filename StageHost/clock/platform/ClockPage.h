#pragma once

#include <atomic>
#include <cstdint>

namespace stagehost {

/// How the time of a show follows that of the system.
struct ClockFace {
    std::int64_t systemAnchor = 0; ///< ns of the system's monotonic clock
    std::int64_t showAnchor = 0;   ///< ns of the show's monotonic clock at that moment
    std::int64_t wallAhead = 0;    ///< ns by which the show's wall clock is ahead of its monotonic clock
    std::int64_t speed = 1;        ///< seconds of the show in one of the system; 0: the show's time stands still
    std::int64_t lookAgain = 0; ///< ns after which who waits looks at the clock again, as the speed may have grown; 0:
                                ///< it will not

    std::int64_t ShowAt(std::int64_t system) const { return showAnchor + (system - systemAnchor) * speed; }
};

/// A page of memory that the processes of one show share: one writes, all read, nobody waits. The numbers belong
/// together when the count was even and the same before and behind.
class ClockPage {
public:
    /// [the thread that directs the show]
    void Write(const ClockFace& face) {
        m_count.fetch_add(1, std::memory_order_acq_rel);
        for (int index = 0; index < kNumbers; ++index)
            m_numbers[index].store(face.*kOrder[index], std::memory_order_release);
        m_count.fetch_add(1, std::memory_order_acq_rel);
    }

    /// [any, of any process]
    ClockFace Read() const {
        ClockFace face;
        std::uint32_t before = 0;
        do {
            before = m_count.load(std::memory_order_acquire);
            for (int index = 0; index < kNumbers; ++index)
                face.*kOrder[index] = m_numbers[index].load(std::memory_order_acquire);
        } while (before % 2 != 0 || before != m_count.load(std::memory_order_acquire));
        return face;
    }

private:
    static constexpr std::int64_t ClockFace::*kOrder[] = {&ClockFace::systemAnchor, &ClockFace::showAnchor,
                                                          &ClockFace::wallAhead, &ClockFace::speed,
                                                          &ClockFace::lookAgain};
    static constexpr int kNumbers = 5;

    std::atomic<std::uint32_t> m_count{0};
    std::atomic<std::int64_t> m_numbers[kNumbers] = {};
};

} // namespace stagehost
