#include "ShowTask.h"

#include <algorithm>
#include <iterator>

#include "HostCodes.h"

namespace stagehost {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kStatusTexts[] = {"Stopped", "Running", "Paused"};

std::vector<std::int32_t> TimesOf(const TaskSpec& spec) {
    std::vector<std::int32_t> times;
    for (const auto& line : spec.lines)
        times.push_back(line.at);
    return times;
}

/// An action of Perform: its parameter, if it has one, and the work.
struct ActionRow {
    const char* name;
    const char* parameter;
    KXPCode (*run)(ShowTask& task, const std::string& text, std::int32_t number);
    bool isNumber;
};

constexpr ActionRow kActions[] = {
    {"Start", "", [](ShowTask& task, const std::string&, std::int32_t) { return task.Start(); }, false},
    {"Pause", "", [](ShowTask& task, const std::string&, std::int32_t) { return task.Pause(); }, false},
    {"Stop", "Mode", [](ShowTask& task, const std::string&, std::int32_t mode) { return task.Stop(mode); }, true},
    {"GotoLabel", "Label", [](ShowTask& task, const std::string& label, std::int32_t) { return task.GotoLabel(label); },
     false},
    {"GotoLine", "Line", [](ShowTask& task, const std::string&, std::int32_t line) { return task.GotoLine(line); },
     true},
    {"GotoTime", "Time", [](ShowTask& task, const std::string&, std::int32_t time) { return task.GotoTime(time); },
     true},
};

} // namespace

struct ShowTask::Trouble {
    std::mutex lock; ///< guards the fields below
    std::string text;
    ChangeFeed* feed = nullptr; ///< null when the task has ended

    void Set(const std::string& task, const std::string& what) {
        const std::lock_guard<std::mutex> hold(lock);
        text = what;
        if (feed != nullptr)
            feed->Tell(ObjectKind::Task, task, "Error", what);
    }

    void Clear() {
        const std::lock_guard<std::mutex> hold(lock);
        text.clear();
    }
};

ShowTask::ShowTask(TaskSpec spec, ChangeFeed& feed, Player player)
    : ShowObject(ObjectKind::Task, spec.name, spec.conduct)
    , spec_(std::move(spec))
    , feed_(feed)
    , player_(std::move(player))
    , trouble_(std::make_shared<Trouble>())
    , timeline_(TimesOf(spec_)) {
    trouble_->feed = &feed;
}

ShowTask::~ShowTask() {
    End();
}

void ShowTask::End() {
    {
        const std::lock_guard<std::mutex> hold(lock_);
        ending_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable())
        thread_.join();
    const std::lock_guard<std::mutex> hold(trouble_->lock);
    trouble_->feed = nullptr;
}

KXPCode ShowTask::Start() {
    const std::lock_guard<std::mutex> hold(lock_);
    if (ending_)
        return kEnding;
    if (!timeline_.Start(Clock::now()))
        return KXP_OK;
    trouble_->Clear();
    TellStatus();
    if (!thread_.joinable())
        thread_ = std::thread([this] { Serve(); });
    changed_.notify_all();
    return KXP_OK;
}

KXPCode ShowTask::Pause() {
    const std::lock_guard<std::mutex> hold(lock_);
    if (timeline_.Pause(Clock::now()))
        TellStatus();
    changed_.notify_all();
    return timeline_.Now() == TaskTimeline::State::Paused ? KXP_OK : KXPCode{kNotRunning};
}

KXPCode ShowTask::Stop(std::int32_t mode) {
    if (mode != 0 && mode != 1)
        return kBadValue;
    const std::lock_guard<std::mutex> hold(lock_);
    if (timeline_.Stop(Clock::now(), mode == 0))
        TellStatus();
    changed_.notify_all();
    return KXP_OK;
}

KXPCode ShowTask::GotoLabel(const std::string& label) {
    const auto line = std::find_if(spec_.lines.begin(), spec_.lines.end(),
                                   [&](const auto& candidate) { return !label.empty() && candidate.label == label; });
    const std::lock_guard<std::mutex> hold(lock_);
    return Move(timeline_.GotoLine(static_cast<std::size_t>(line - spec_.lines.begin()), Clock::now()));
}

KXPCode ShowTask::GotoLine(std::int32_t line) {
    const std::lock_guard<std::mutex> hold(lock_);
    return Move(line > 0 && timeline_.GotoLine(static_cast<std::size_t>(line) - 1, Clock::now()));
}

KXPCode ShowTask::GotoTime(std::int32_t time) {
    const std::lock_guard<std::mutex> hold(lock_);
    return Move(timeline_.GotoTime(time, Clock::now()));
}

KXPCode ShowTask::Do(TaskAction action) {
    return action == TaskAction::Start ? Start() : action == TaskAction::Pause ? Pause() : Stop(0);
}

std::string ShowTask::Status() const {
    const std::lock_guard<std::mutex> hold(lock_);
    return StatusLocked();
}

std::vector<ObjectProperty> ShowTask::Properties() const {
    std::string error;
    {
        const std::lock_guard<std::mutex> hold(trouble_->lock);
        error = trouble_->text;
    }
    const std::int32_t duration = spec_.lines.empty() ? 0 : spec_.lines.back().at;
    const std::lock_guard<std::mutex> hold(lock_);
    return {{"Status", StatusLocked()},
            {"Line", std::to_string(line_)},
            {"Label", line_ == 0 ? std::string() : spec_.lines[line_ - 1].label},
            {"Time", std::to_string(std::min(timeline_.Position(Clock::now()), duration))},
            {"Lines", std::to_string(spec_.lines.size())},
            {"Duration", std::to_string(duration)},
            {"Error", error}};
}

void ShowTask::Perform(const std::string& action, const Parameters& parameters, const Answer& answer) {
    const auto* row =
        std::find_if(std::begin(kActions), std::end(kActions), [&](const auto& known) { return known.name == action; });
    if (row == std::end(kActions))
        return answer({kNoSuchAction});
    const auto number = row->isNumber ? parameters.WholeOr(row->parameter, 0) : std::optional<std::int32_t>(0);
    if (!parameters.AreAmong({row->parameter}) || !number)
        return answer({kBadParameters});
    const KXPCode code = row->run(*this, parameters.Text(row->parameter).value_or(std::string()), *number);
    answer({code, code == KXP_OK ? std::optional(Status()) : std::nullopt});
}

KXPCode ShowTask::Move(bool found) {
    changed_.notify_all();
    return found ? KXP_OK : KXPCode{kNoSuchPlace};
}

std::string ShowTask::StatusLocked() const {
    return kStatusTexts[static_cast<int>(timeline_.Now())];
}

void ShowTask::TellStatus() {
    feed_.Tell(ObjectKind::Task, Name(), "Status", StatusLocked());
}

void ShowTask::Serve() {
    std::unique_lock<std::mutex> hold(lock_);
    while (!ending_) {
        if (const auto line = timeline_.TakeDue(Clock::now()))
            Play(*line, hold);
        else if (timeline_.TakeEnd())
            TellStatus();
        else if (const auto due = timeline_.NextDue())
            changed_.wait_until(hold, *due);
        else
            changed_.wait(hold);
    }
}

void ShowTask::Play(std::size_t line, std::unique_lock<std::mutex>& hold) {
    line_ = line + 1;
    feed_.Tell(ObjectKind::Task, Name(), "Line", std::to_string(line_));
    hold.unlock();
    player_(spec_.lines[line].action,
            [trouble = trouble_, name = Name()](const std::string& what) { trouble->Set(name, what); });
    hold.lock();
}

} // namespace stagehost
