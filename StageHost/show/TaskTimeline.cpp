#include "TaskTimeline.h"

#include <algorithm>
#include <limits>

namespace stagehost {

TaskTimeline::TaskTimeline(std::vector<std::int32_t> lineTimes)
    : times_(std::move(lineTimes)) {}

std::int32_t TaskTimeline::Position(TimePoint now) const {
    if (state_ != State::Running)
        return base_;
    const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(now - since_).count();
    const auto last = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min<std::int64_t>(base_ + std::max<std::int64_t>(0, passed), last));
}

bool TaskTimeline::Start(TimePoint now) {
    if (state_ == State::Running)
        return false;
    since_ = now;
    state_ = State::Running;
    return true;
}

bool TaskTimeline::Pause(TimePoint now) {
    if (state_ != State::Running)
        return false;
    base_ = Position(now);
    state_ = State::Paused;
    return true;
}

bool TaskTimeline::Stop(TimePoint now, bool rewind) {
    const bool changed = state_ != State::Stopped;
    base_ = Position(now);
    state_ = State::Stopped;
    if (rewind)
        MoveTo(0, 0, now);
    return changed;
}

bool TaskTimeline::GotoLine(std::size_t line, TimePoint now) {
    if (line >= times_.size())
        return false;
    MoveTo(times_[line], line, now);
    return true;
}

bool TaskTimeline::GotoTime(std::int32_t position, TimePoint now) {
    const std::int32_t last = times_.empty() ? 0 : times_.back();
    if (position < 0 || position > last)
        return false;
    const auto line = std::lower_bound(times_.begin(), times_.end(), position);
    MoveTo(position, static_cast<std::size_t>(line - times_.begin()), now);
    return true;
}

std::optional<std::size_t> TaskTimeline::TakeDue(TimePoint now) {
    const auto due = NextDue();
    if (!due || now < *due)
        return std::nullopt;
    return next_++;
}

bool TaskTimeline::TakeEnd() {
    if (state_ != State::Running || next_ < times_.size())
        return false;
    Stop(since_, true);
    return true;
}

std::optional<TaskTimeline::TimePoint> TaskTimeline::NextDue() const {
    if (state_ != State::Running || next_ >= times_.size())
        return std::nullopt;
    return since_ + std::chrono::milliseconds(std::int64_t{times_[next_]} - base_);
}

void TaskTimeline::MoveTo(std::int32_t position, std::size_t line, TimePoint now) {
    base_ = position;
    since_ = now;
    next_ = line;
}

} // namespace stagehost
