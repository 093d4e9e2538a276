#include "ShowTask.h"

#include <future>

#include <gtest/gtest.h>

#include "HostCodes.h"

using namespace stagehost;

namespace {

constexpr std::chrono::seconds kLong(20);

ActionSpec Named(const char* name) {
    ActionSpec action;
    action.cue = name;
    return action;
}

/// A task on its own thread; what it plays and tells is kept.
class TaskOnItsThread : public testing::Test {
protected:
    void GivenLines(std::vector<TaskLineSpec> lines) {
        subscription = feed.Subscribe([this](const ShowChange& change) {
            const std::lock_guard<std::mutex> hold(lock);
            told.push_back(change.property + "=" + change.value);
            changed.notify_all();
        });
        task =
            std::make_unique<ShowTask>(TaskSpec{"Task", std::move(lines), Conduct::Normal}, feed,
                                       [this](const ActionSpec& action, const auto& failed) { Play(action, failed); });
    }

    void Play(const ActionSpec& action, const std::function<void(const std::string&)>& failed) {
        const std::lock_guard<std::mutex> hold(lock);
        played.push_back(action.cue);
        threads.push_back(std::this_thread::get_id());
        times.push_back(std::chrono::steady_clock::now());
        if (action.cue == "bad")
            failed("it broke");
        if (action.cue != "again" || again-- <= 0)
            return;
        EXPECT_EQ(task->GotoLabel("top"), KXP_OK);
    }

    std::vector<std::string> WaitUntilTold(const std::string& what) {
        std::unique_lock<std::mutex> hold(lock);
        EXPECT_TRUE(changed.wait_for(hold, kLong, [&] {
            return std::find(told.begin(), told.end(), what) != told.end();
        })) << what;
        return told;
    }

    std::string Property(const char* name) { return task->Property(name).value_or("none"); }

    ChangeFeed feed;
    std::mutex lock; ///< guards the lists
    std::condition_variable changed;
    std::vector<std::string> told;
    std::vector<std::string> played;
    std::vector<std::thread::id> threads;
    std::vector<std::chrono::steady_clock::time_point> times;
    int again = 0;
    std::unique_ptr<ShowTask> task;
    Subscription subscription;
};

} // namespace

TEST_F(TaskOnItsThread, PlaysItsLinesInTimeAndTellsWhatHappens) {
    GivenLines({{0, "", Named("a")}, {40, "", Named("b")}, {40, "", Named("c")}});
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(task->Start(), KXP_OK);
    const auto all = WaitUntilTold("Status=Stopped");
    EXPECT_EQ(all, (std::vector<std::string>{"Status=Running", "Line=1", "Line=2", "Line=3", "Status=Stopped"}));
    EXPECT_EQ(played, (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_GE(times[1] - begin, std::chrono::milliseconds(40));
    for (const auto& thread : threads) {
        EXPECT_EQ(thread, threads[0]);
        EXPECT_NE(thread, std::this_thread::get_id());
    }
}

TEST_F(TaskOnItsThread, GoesOnBehindALineThatFailsAndKeepsTheFailure) {
    GivenLines({{0, "", Named("bad")}, {0, "", Named("b")}});
    task->Start();
    const auto all = WaitUntilTold("Status=Stopped");
    EXPECT_EQ(all,
              (std::vector<std::string>{"Status=Running", "Line=1", "Error=it broke", "Line=2", "Status=Stopped"}));
    EXPECT_EQ(Property("Error"), "it broke");
    EXPECT_EQ(Property("Lines"), "2");
}

TEST_F(TaskOnItsThread, ClearsTheFailureWhenItStartsAgain) {
    GivenLines({{0, "", Named("bad")}, {1000000, "", {}}});
    task->Start();
    WaitUntilTold("Error=it broke");
    task->Stop(1);
    task->Start();
    EXPECT_EQ(Property("Error"), "");
}

TEST_F(TaskOnItsThread, MayBeMovedByItsOwnLines) {
    GivenLines({{0, "top", Named("a")}, {1, "", Named("again")}});
    again = 2;
    task->Start();
    WaitUntilTold("Status=Stopped");
    EXPECT_EQ(played, (std::vector<std::string>{"a", "again", "a", "again", "a", "again"}));
}

TEST_F(TaskOnItsThread, IsWokenByAMove) {
    GivenLines({{0, "begin", Named("a")}, {86400000, "late", Named("b")}});
    task->Start();
    WaitUntilTold("Line=1");
    EXPECT_EQ(task->GotoLabel("late"), KXP_OK);
    WaitUntilTold("Status=Stopped");
    EXPECT_EQ(played.back(), "b");
    EXPECT_EQ(Property("Label"), "late");
    EXPECT_EQ(Property("Duration"), "86400000");
}

TEST_F(TaskOnItsThread, EndsAtOnceHoweverLongItsNextLineIsAway) {
    GivenLines({{0, "", {}}, {86400000, "", {}}});
    task->Start();
    WaitUntilTold("Line=1");
    task->End();
    EXPECT_EQ(task->Start(), KXPCode{kEnding});
    task->End();
}

TEST_F(TaskOnItsThread, MayFailWhenItHasGone) {
    std::function<void(const std::string&)> late;
    std::promise<void> got;
    {
        ShowTask m_short(TaskSpec{"Short", {{0, "", Named("x")}}, Conduct::Normal}, feed,
                         [&](const ActionSpec&, const auto& failed) {
                             late = failed;
                             got.set_value();
                         });
        m_short.Start();
        got.get_future().wait();
    }
    late("nobody is there");
    SUCCEED() << "the sanitizers tell";
}
