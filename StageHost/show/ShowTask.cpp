#include "ShowTask.h"

#include <algorithm>
#include <iterator>
#include <system_error>

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
    , m_spec(std::move(spec))
    , m_feed(feed)
    , m_player(std::move(player))
    , m_trouble(std::make_shared<Trouble>())
    , m_timeline(TimesOf(m_spec)) {
    m_trouble->feed = &feed;
}

ShowTask::~ShowTask() {
    End();
}

void ShowTask::End() {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_ending = true;
    }
    m_changed.notify_all();
    if (m_thread.joinable())
        m_thread.join();
    const std::lock_guard<std::mutex> hold(m_trouble->lock);
    m_trouble->feed = nullptr;
}

KXPCode ShowTask::Start() {
    const std::lock_guard<std::mutex> hold(m_lock);
    if (m_ending)
        return kEnding;
    if (!HasThread())
        return kNoRoom;
    if (!m_timeline.Start(Clock::now()))
        return KXP_OK;
    m_trouble->Clear();
    TellStatus();
    m_changed.notify_all();
    return KXP_OK;
}

/// Under the lock. Makes the thread if there is none yet.
bool ShowTask::HasThread() {
    try {
        if (!m_thread.joinable())
            m_thread = std::thread([this] { Serve(); });
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

KXPCode ShowTask::Pause() {
    const std::lock_guard<std::mutex> hold(m_lock);
    if (m_timeline.Pause(Clock::now()))
        TellStatus();
    m_changed.notify_all();
    return m_timeline.Now() == TaskTimeline::State::Paused ? KXP_OK : KXPCode{kNotRunning};
}

KXPCode ShowTask::Stop(std::int32_t mode) {
    if (mode != 0 && mode != 1)
        return kBadValue;
    const std::lock_guard<std::mutex> hold(m_lock);
    if (m_timeline.Stop(Clock::now(), mode == 0))
        TellStatus();
    m_changed.notify_all();
    return KXP_OK;
}

KXPCode ShowTask::GotoLabel(const std::string& label) {
    const auto line = std::find_if(m_spec.lines.begin(), m_spec.lines.end(),
                                   [&](const auto& candidate) { return !label.empty() && candidate.label == label; });
    const std::lock_guard<std::mutex> hold(m_lock);
    return Move(m_timeline.GotoLine(static_cast<std::size_t>(line - m_spec.lines.begin()), Clock::now()));
}

KXPCode ShowTask::GotoLine(std::int32_t line) {
    const std::lock_guard<std::mutex> hold(m_lock);
    return Move(line > 0 && m_timeline.GotoLine(static_cast<std::size_t>(line) - 1, Clock::now()));
}

KXPCode ShowTask::GotoTime(std::int32_t time) {
    const std::lock_guard<std::mutex> hold(m_lock);
    return Move(m_timeline.GotoTime(time, Clock::now()));
}

KXPCode ShowTask::Do(TaskAction action) {
    return action == TaskAction::Start ? Start() : action == TaskAction::Pause ? Pause() : Stop(0);
}

std::string ShowTask::Status() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return StatusLocked();
}

std::vector<ObjectProperty> ShowTask::Properties() const {
    std::string error;
    {
        const std::lock_guard<std::mutex> hold(m_trouble->lock);
        error = m_trouble->text;
    }
    const std::int32_t duration = m_spec.lines.empty() ? 0 : m_spec.lines.back().at;
    const std::lock_guard<std::mutex> hold(m_lock);
    return {{"Status", StatusLocked()},
            {"Line", std::to_string(m_line)},
            {"Label", m_line == 0 ? std::string() : m_spec.lines[m_line - 1].label},
            {"Time", std::to_string(std::min(m_timeline.Position(Clock::now()), duration))},
            {"Lines", std::to_string(m_spec.lines.size())},
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
    m_changed.notify_all();
    return found ? KXP_OK : KXPCode{kNoSuchPlace};
}

std::string ShowTask::StatusLocked() const {
    return kStatusTexts[static_cast<int>(m_timeline.Now())];
}

void ShowTask::TellStatus() {
    m_feed.Tell(ObjectKind::Task, Name(), "Status", StatusLocked());
}

void ShowTask::Serve() {
    std::unique_lock<std::mutex> hold(m_lock);
    while (!m_ending) {
        if (const auto line = m_timeline.TakeDue(Clock::now()))
            Play(*line, hold);
        else if (m_timeline.TakeEnd())
            TellStatus();
        else if (const auto due = m_timeline.NextDue())
            m_changed.wait_until(hold, *due);
        else
            m_changed.wait(hold);
    }
}

void ShowTask::Play(std::size_t line, std::unique_lock<std::mutex>& hold) {
    m_line = line + 1;
    m_feed.Tell(ObjectKind::Task, Name(), "Line", std::to_string(m_line));
    hold.unlock();
    m_player(m_spec.lines[line].action,
             [trouble = m_trouble, name = Name()](const std::string& what) { trouble->Set(name, what); });
    hold.lock();
}

} // namespace stagehost
