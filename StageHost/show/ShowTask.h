#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "ChangeFeed.h"
#include "ShowObject.h"
#include "TaskTimeline.h"

namespace stagehost {

/// A task of the show: lines with times, played on a clock and a thread of the task's own.
///
/// Its changes go to the feed: "Status" ("Stopped", "Running", "Paused"), "Line" (the number, from 1, of the line that
/// is played) and "Error" (what a line failed with). A line that fails does not stop the task.
class ShowTask final : public ShowObject {
public:
    /// Runs a line's action; failures go to the second argument, at once or later, on any host thread.
    using Player = std::function<void(const ActionSpec&, std::function<void(const std::string&)>)>;

    /// @param feed must outlive the task. @param player must be callable until the task's end.
    ShowTask(TaskSpec spec, ChangeFeed& feed, Player player);
    /// Waits for the line that is being played.
    ~ShowTask() override;

    /// Ends the task for good and waits for the line that is being played. Not to be called by a line's action.
    void End();

    /// Starts from where the task stands; a running one goes on. @return 0, 75 when it has ended for good, 76 when the
    /// system has no thread left for it.
    KXPCode Start();
    /// Holds the task where it stands. @return 0, 74 when it does not run; a paused one stays so.
    KXPCode Pause();
    /// Stops the task. @param mode 0 back to its beginning, 1 where it stands. @return 0, 68 another mode.
    KXPCode Stop(std::int32_t mode);
    /// Moves the task; a running one goes on there. @return 0, 69 there is no such place.
    KXPCode GotoLabel(const std::string& label);
    KXPCode GotoLine(std::int32_t line); ///< @param line from 1
    KXPCode GotoTime(std::int32_t time); ///< @param time ms from 0 to the last line's

    KXPCode Do(TaskAction action);

    std::string Status() const;

    /// "Status", "Line", "Label", "Time", "Lines", "Duration", "Error"; none can be set.
    std::vector<ObjectProperty> Properties() const override;
    /// "Start", "Pause", "Stop" (Mode), "GotoLabel" (Label), "GotoLine"
    /// (Line), "GotoTime" (Time). The result text is the status.
    void Perform(const std::string& action, const Parameters& parameters, const Answer& answer) override;

private:
    /// What a task's thread shares with answers that come after the task's end.
    struct Trouble;

    bool HasThread();
    KXPCode Move(bool found);
    std::string StatusLocked() const;
    void TellStatus();
    void Serve();
    void Play(std::size_t line, std::unique_lock<std::mutex>& hold);

    const TaskSpec m_spec;
    ChangeFeed& m_feed;
    const Player m_player;
    const std::shared_ptr<Trouble> m_trouble;

    mutable std::mutex m_lock; ///< guards the fields below
    std::condition_variable m_changed;
    TaskTimeline m_timeline;
    std::size_t m_line = 0; ///< number of the line played last, 0 before the first
    bool m_ending = false;
    std::thread m_thread; ///< made at the first start
};

} // namespace stagehost
