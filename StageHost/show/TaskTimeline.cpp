#include "TaskTimeline.h"

#include <algorithm>
#include <limits>

namespace stagehost {

TaskTimeline::TaskTimeline(std::vector<std::int32_t> lineTimes)
    : m_times(std::move(lineTimes)) {}

std::int32_t TaskTimeline::Position(TimePoint now) const {
    if (m_state != State::Running)
        return m_base;
    const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(now - m_since).count();
    const auto last = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min<std::int64_t>(m_base + std::max<std::int64_t>(0, passed), last));
}

bool TaskTimeline::Start(TimePoint now) {
    if (m_state == State::Running)
        return false;
    m_since = now;
    m_state = State::Running;
    return true;
}

bool TaskTimeline::Pause(TimePoint now) {
    if (m_state != State::Running)
        return false;
    m_base = Position(now);
    m_state = State::Paused;
    return true;
}

bool TaskTimeline::Stop(TimePoint now, bool rewind) {
    const bool changed = m_state != State::Stopped;
    m_base = Position(now);
    m_state = State::Stopped;
    if (rewind)
        MoveTo(0, 0, now);
    return changed;
}

bool TaskTimeline::GotoLine(std::size_t line, TimePoint now) {
    if (line >= m_times.size())
        return false;
    MoveTo(m_times[line], line, now);
    return true;
}

bool TaskTimeline::GotoTime(std::int32_t position, TimePoint now) {
    const std::int32_t last = m_times.empty() ? 0 : m_times.back();
    if (position < 0 || position > last)
        return false;
    const auto line = std::lower_bound(m_times.begin(), m_times.end(), position);
    MoveTo(position, static_cast<std::size_t>(line - m_times.begin()), now);
    return true;
}

std::optional<std::size_t> TaskTimeline::TakeDue(TimePoint now) {
    const auto due = NextDue();
    if (!due || now < *due)
        return std::nullopt;
    return m_next++;
}

bool TaskTimeline::TakeEnd() {
    if (m_state != State::Running || m_next < m_times.size())
        return false;
    Stop(m_since, true);
    return true;
}

std::optional<TaskTimeline::TimePoint> TaskTimeline::NextDue() const {
    if (m_state != State::Running || m_next >= m_times.size())
        return std::nullopt;
    return m_since + std::chrono::milliseconds(std::int64_t{m_times[m_next]} - m_base);
}

void TaskTimeline::MoveTo(std::int32_t position, std::size_t line, TimePoint now) {
    m_base = position;
    m_since = now;
    m_next = line;
}

} // namespace stagehost
