#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace stagehost {

/// Where a task stands in time: plain computation, with the time as a parameter. Positions are milliseconds from the
/// task's beginning, lines count from 0 here.
///
/// A task that is moved goes on at the new place without playing what lies between. When its last line has been
/// taken, the task is over: it stops and stands at its beginning again.
class TaskTimeline {
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    enum class State { Stopped, Running, Paused };

    /// @param lineTimes in ascending order.
    explicit TaskTimeline(std::vector<std::int32_t> lineTimes);

    State Now() const { return m_state; }
    std::int32_t Position(TimePoint now) const;

    /// The line that comes next; the count of lines behind the last.
    std::size_t NextLine() const { return m_next; }

    /// Runs from where it stands. @return whether that changed the state.
    bool Start(TimePoint now);
    /// Holds a running task where it stands. @return whether it ran.
    bool Pause(TimePoint now);
    /// Stops. @param rewind to the beginning, otherwise the next start goes on from here.
    /// @return whether that changed the state.
    bool Stop(TimePoint now, bool rewind);

    /// Moves to a line; false when there is none of that number.
    bool GotoLine(std::size_t line, TimePoint now);
    /// Moves to a time from 0 to that of the last line; false for any other.
    bool GotoTime(std::int32_t position, TimePoint now);

    /// Takes the next line if it is due; a line is given once.
    std::optional<std::size_t> TakeDue(TimePoint now);

    /// Ends a running task that has no line left. @return whether it ended.
    bool TakeEnd();

    /// When the next line is due; nothing while the task does not run.
    std::optional<TimePoint> NextDue() const;

private:
    void MoveTo(std::int32_t position, std::size_t line, TimePoint now);

    const std::vector<std::int32_t> m_times;
    State m_state = State::Stopped;
    std::int32_t m_base = 0; ///< the position at m_since, or for ever while the task does not run
    TimePoint m_since{};
    std::size_t m_next = 0;
};

} // namespace stagehost
