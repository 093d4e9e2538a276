#pragma once

#include <cstdint>
#include <mutex>

/// Counts what was dropped, so that a burst is told by one number and not once for each.
/// - All that was counted is told, once.
/// - A burst is told when it is over; one that goes on is told about once a second.   [thread: any]
class DropCount {
public:
    void Add();
    /// Asked at each tick. @param nowMs milliseconds that wrap at 2^32. @return how many are to be told now, or 0.
    std::int32_t TakeAtTick(std::uint32_t nowMs);
    /// @return all that has not been told.
    std::int32_t TakeAll();

private:
    static constexpr std::uint32_t kLongestMs = 1000;

    std::mutex m_lock;
    std::int32_t m_count = 0;        ///< dropped and not told; under m_lock, as all that follows
    std::int32_t m_countAtTick = 0;  ///< of them at the tick before
    std::uint32_t m_firstTickMs = 0; ///< the tick that first saw them
};
