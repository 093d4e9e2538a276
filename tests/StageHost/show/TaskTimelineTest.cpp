#include "TaskTimeline.h"

#include <gtest/gtest.h>

using namespace stagehost;
using State = TaskTimeline::State;

namespace {

/// A task with lines at 0, 100, 100 and 250 ms, on a clock of the test's own.
class Timeline : public testing::Test {
protected:
    void After(int milliseconds) { now += std::chrono::milliseconds(milliseconds); }

    /// The numbers of all lines that are due now, from 1.
    std::vector<int> Due() {
        std::vector<int> lines;
        while (const auto line = task.TakeDue(now))
            lines.push_back(static_cast<int>(*line) + 1);
        return lines;
    }

    using Lines = std::vector<int>;
    TaskTimeline task{{0, 100, 100, 250}};
    TaskTimeline::TimePoint now{std::chrono::hours(5)};
};

} // namespace

TEST_F(Timeline, PlaysLinesAtTheirTimes) {
    EXPECT_EQ(Due(), Lines{});
    EXPECT_TRUE(task.Start(now));
    EXPECT_EQ(Due(), Lines{1});
    After(99);
    EXPECT_EQ(Due(), Lines{});
    After(1);
    EXPECT_EQ(Due(), (Lines{2, 3}));
    EXPECT_EQ(task.NextDue(), now + std::chrono::milliseconds(150));
    After(1000);
    EXPECT_EQ(Due(), Lines{4}) << "a line that is late is played";
}

TEST_F(Timeline, IsOverBehindItsLastLineAndStandsAtItsBeginning) {
    task.Start(now);
    EXPECT_FALSE(task.TakeEnd());
    After(250);
    EXPECT_EQ(Due().size(), 4u);
    EXPECT_EQ(task.Now(), State::Running) << "the last line may still move the task";
    EXPECT_TRUE(task.TakeEnd());
    EXPECT_EQ(task.Now(), State::Stopped);
    EXPECT_EQ(task.Position(now), 0);
    EXPECT_FALSE(task.TakeEnd());
    task.Start(now);
    EXPECT_EQ(Due(), Lines{1});
}

TEST_F(Timeline, HoldsItsPlaceWhilePaused) {
    EXPECT_FALSE(task.Pause(now)) << "it does not run";
    task.Start(now);
    Due();
    After(60);
    EXPECT_TRUE(task.Pause(now));
    EXPECT_FALSE(task.Pause(now));
    After(1000);
    EXPECT_EQ(task.Position(now), 60);
    EXPECT_EQ(Due(), Lines{});
    EXPECT_FALSE(task.NextDue());
    EXPECT_TRUE(task.Start(now));
    EXPECT_FALSE(task.Start(now));
    After(39);
    EXPECT_EQ(Due(), Lines{});
    After(1);
    EXPECT_EQ(Due(), (Lines{2, 3}));
}

TEST_F(Timeline, StopsAtItsBeginningOrWhereItStands) {
    task.Start(now);
    After(120);
    Due();
    EXPECT_TRUE(task.Stop(now, false));
    EXPECT_FALSE(task.Stop(now, false));
    EXPECT_EQ(task.Position(now), 120);
    task.Start(now);
    After(130);
    EXPECT_EQ(Due(), Lines{4}) << "it goes on where it stood";
    task.Stop(now, true);
    EXPECT_EQ(task.Position(now), 0);
    EXPECT_EQ(task.NextLine(), 0u);
}

TEST_F(Timeline, MovesWithoutPlayingWhatLiesBetween) {
    task.Start(now);
    Due();
    EXPECT_TRUE(task.GotoLine(3, now));
    EXPECT_EQ(Due(), Lines{4});
    EXPECT_TRUE(task.GotoTime(90, now));
    After(10);
    EXPECT_EQ(Due(), (Lines{2, 3}));
    EXPECT_TRUE(task.GotoLine(2, now));
    EXPECT_EQ(Due(), Lines{3}) << "the line itself, not the one before it at the same time";
    EXPECT_TRUE(task.GotoTime(100, now));
    EXPECT_EQ(Due(), (Lines{2, 3}));
    EXPECT_TRUE(task.GotoTime(250, now));
    EXPECT_EQ(Due(), Lines{4});
}

TEST_F(Timeline, MovesWhileItDoesNotRun) {
    EXPECT_TRUE(task.GotoTime(200, now));
    EXPECT_EQ(task.Now(), State::Stopped);
    EXPECT_EQ(task.Position(now), 200);
    After(500);
    task.Start(now);
    After(50);
    EXPECT_EQ(Due(), Lines{4});
}

TEST_F(Timeline, RefusesPlacesItDoesNotHave) {
    EXPECT_FALSE(task.GotoLine(4, now));
    EXPECT_FALSE(task.GotoTime(-1, now));
    EXPECT_FALSE(task.GotoTime(251, now));
    EXPECT_EQ(task.Position(now), 0);
}

TEST(TaskTimeline, OfATaskWithoutLinesIsOverAtOnce) {
    TaskTimeline task({});
    const TaskTimeline::TimePoint now{};
    EXPECT_TRUE(task.Start(now));
    EXPECT_FALSE(task.TakeDue(now));
    EXPECT_TRUE(task.TakeEnd());
    EXPECT_FALSE(task.GotoLine(0, now));
    EXPECT_TRUE(task.GotoTime(0, now));
}

TEST(TaskTimeline, StaysWithinItsNumbersForever) {
    TaskTimeline task({0, 2147483647});
    const TaskTimeline::TimePoint now{};
    task.Start(now);
    task.TakeDue(now);
    const auto far = now + std::chrono::hours(24 * 365 * 50);
    EXPECT_EQ(task.Position(far), 2147483647);
    EXPECT_EQ(task.NextDue(), now + std::chrono::milliseconds(2147483647));
    EXPECT_TRUE(task.TakeDue(far));
}
