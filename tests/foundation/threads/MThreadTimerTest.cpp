#include "MThreadTimer.h"

#include <atomic>
#include <chrono>
#include <ctime>
#include <functional>
#include <initializer_list>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Clock.h"
#include "Deadline.h"

namespace {

class Ticks : public IThreadTimerHandler {
public:
    void OnTimer(std::uint32_t nowMs) override {
        lastMs = nowMs;
        ++count;
        if (action)
            action();
    }
    bool HaveReached(int wanted) const {
        return Eventually([&] { return count >= wanted; });
    }

    std::function<void()> action; // set before the handler is added
    std::atomic<int> count{0};
    std::atomic<std::uint32_t> lastMs{0};
};

constexpr std::uint32_t kHourMs = 3600000;

/// What the thread itself has computed, whatever else the machine does.
double ProcessorMsOfThisThread() {
    timespec used{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) * 1e3 + static_cast<double>(used.tv_nsec) / 1e6;
}

} // namespace

TEST(MThreadTimer, CallsItsHandlersAgainAndAgain) {
    Ticks first;
    Ticks second;
    MThreadTimer timer(1);
    timer.AddHandler(&first);
    timer.AddHandler(&second);
    ASSERT_TRUE(timer.Start(false));
    EXPECT_TRUE(first.HaveReached(3));
    EXPECT_TRUE(second.HaveReached(3));
    timer.RemoveHandler(&first);
    timer.RemoveHandler(&second);
}

TEST(MThreadTimer, HandsTheClockOfThePassToAllHandlers) {
    Ticks first;
    Ticks second;
    const std::uint32_t before = MillisecondClock();
    MThreadTimer timer(kHourMs);
    timer.AddHandler(&first);
    timer.AddHandler(&second);
    ASSERT_TRUE(timer.Start());
    ASSERT_TRUE(second.HaveReached(1));
    EXPECT_EQ(first.lastMs, second.lastMs);
    EXPECT_LE(first.lastMs - before, kDeadlineMs);
}

TEST(MThreadTimer, StoppingDoesNotWaitForThePeriod) {
    Ticks ticks;
    MThreadTimer timer(kHourMs);
    timer.AddHandler(&ticks);
    ASSERT_TRUE(timer.Start());
    ASSERT_TRUE(ticks.HaveReached(1));
    EXPECT_TRUE(timer.Stop());
    EXPECT_TRUE(timer.Wait(kDeadlineMs));
    EXPECT_EQ(ticks.count, 1) << "the period is a sleep between passes";
}

TEST(MThreadTimer, ThePeriodIsASleepBetweenPassesAndNotARate) {
    constexpr std::uint32_t kPeriodMs = 20;
    std::vector<std::uint32_t> begins;
    std::vector<std::uint32_t> ends;
    Ticks slow;
    slow.action = [&] {
        begins.push_back(MillisecondClock());
        while (MillisecondClock() - begins.back() < 30)
            std::this_thread::yield();
        ends.push_back(MillisecondClock());
    };
    MThreadTimer timer(kPeriodMs);
    timer.AddHandler(&slow);
    ASSERT_TRUE(timer.Start());
    ASSERT_TRUE(slow.HaveReached(4));
    timer.RemoveHandler(&slow);
    for (std::size_t i = 1; i < begins.size(); ++i)
        EXPECT_GE(begins[i] - ends[i - 1], kPeriodMs - 1) << "pass " << i;
}

TEST(MThreadTimer, AHandlerAddedToAnIdleTimerIsCalled) {
    MThreadTimer timer(kHourMs);
    ASSERT_TRUE(timer.Start(true, kDeadlineMs));
    Ticks ticks;
    timer.AddHandler(&ticks);
    EXPECT_TRUE(ticks.HaveReached(1));
    timer.RemoveHandler(&ticks);
}

TEST(MThreadTimer, AnIdleTimerStops) {
    MThreadTimer timer;
    ASSERT_TRUE(timer.Start(true, kDeadlineMs));
    timer.Stop();
    EXPECT_TRUE(timer.Wait(kDeadlineMs));
}

TEST(MThreadTimer, RemovingAHandlerDuringAPassBlocksUntilThePassEnds) {
    MEvent inPass;
    MEvent goOn;
    Ticks slow;
    slow.action = [&] {
        inPass.Set();
        goOn.Wait(kDeadlineMs);
    };
    Ticks other;
    MThreadTimer timer(kHourMs);
    timer.AddHandler(&slow);
    timer.AddHandler(&other);
    ASSERT_TRUE(timer.Start());
    ASSERT_TRUE(inPass.Wait(kDeadlineMs));
    MEvent removed;
    std::thread remover([&] {
        timer.RemoveHandler(&other);
        removed.Set();
    });
    EXPECT_FALSE(removed.Wait(20));
    EXPECT_EQ(other.count, 0);
    goOn.Set();
    EXPECT_TRUE(removed.Wait(kDeadlineMs));
    EXPECT_EQ(other.count, 1) << "the pass went to its end first";
    remover.join();
}

namespace {

/// A handler that sits in its first call until it is let go.
class Hanging : public Ticks {
public:
    Hanging() {
        action = [this] {
            inside.Set();
            goOn.Wait(kDeadlineMs);
            cameBack.Set();
        };
    }
    MEvent inside;
    MEvent goOn;
    MEvent cameBack;
};

constexpr std::chrono::milliseconds kShortPatience(30);

} // namespace

TEST(MThreadTimer, AHandlerThatDoesNotComeBackIsLeftAndTheOthersGoOn) {
    Ticks before;
    Hanging hanging;
    Ticks behind;
    MThreadTimer timer(1, 1, kShortPatience);
    for (IThreadTimerHandler* handler : std::initializer_list<IThreadTimerHandler*>{&before, &hanging, &behind})
        timer.AddHandler(handler);
    ASSERT_TRUE(timer.Start());
    ASSERT_TRUE(hanging.inside.Wait(kDeadlineMs));
    EXPECT_TRUE(behind.HaveReached(3));
    EXPECT_TRUE(before.HaveReached(3));
    EXPECT_EQ(hanging.count, 1) << "at most one call is under way";
    hanging.goOn.Set();
    EXPECT_TRUE(hanging.HaveReached(3)) << "who has come back is called again";
    EXPECT_TRUE(timer.RemoveHandler(&hanging));
}

TEST(MThreadTimer, AddingAHandlerDoesNotWaitForOneThatHangs) {
    Hanging hanging;
    Ticks joining;
    MThreadTimer timer(kHourMs);
    timer.AddHandler(&hanging);
    ASSERT_TRUE(timer.Start());
    ASSERT_TRUE(hanging.inside.Wait(kDeadlineMs));
    timer.AddHandler(&joining);
    EXPECT_EQ(joining.count, 0) << "here and not behind the call";
    hanging.goOn.Set();
    EXPECT_TRUE(joining.HaveReached(1));
}

TEST(MThreadTimer, RemovingAHandlerThatHangsTellsThatItsCallIsStillUnderWay) {
    Hanging hanging;
    Ticks other;
    MThreadTimer timer(1, 1, kShortPatience);
    timer.AddHandler(&hanging);
    timer.AddHandler(&other);
    ASSERT_TRUE(timer.Start());
    ASSERT_TRUE(hanging.inside.Wait(kDeadlineMs));
    EXPECT_FALSE(timer.RemoveHandler(&hanging));
    EXPECT_TRUE(timer.RemoveHandler(&other)) << "of the others none is under way";
    const int before = other.count;
    hanging.goOn.Set();
    Ticks probe;
    timer.AddHandler(&probe);
    EXPECT_TRUE(probe.HaveReached(5));
    EXPECT_EQ(hanging.count, 1);
    EXPECT_EQ(other.count, before);
    EXPECT_TRUE(hanging.cameBack.Wait(kDeadlineMs));
}

TEST(MThreadTimer, EndsWhileAHandlerHangs) {
    Hanging hanging;
    {
        MThreadTimer timer(1, 1, kShortPatience);
        timer.AddHandler(&hanging);
        ASSERT_TRUE(timer.Start());
        ASSERT_TRUE(hanging.inside.Wait(kDeadlineMs));
        EXPECT_FALSE(timer.RemoveHandler(&hanging));
    }
    hanging.goOn.Set();
    EXPECT_TRUE(hanging.cameBack.Wait(kDeadlineMs)) << "the call still finds its handler";
    EXPECT_EQ(hanging.count, 1);
}

TEST(MThreadTimer, SeveralHandlersThatHangAreLeftOneAfterTheOther) {
    std::vector<Hanging> hanging(3);
    Ticks last;
    MThreadTimer timer(1, 1, kShortPatience);
    for (Hanging& handler : hanging)
        timer.AddHandler(&handler);
    timer.AddHandler(&last);
    ASSERT_TRUE(timer.Start());
    EXPECT_TRUE(last.HaveReached(3));
    for (Hanging& handler : hanging)
        handler.goOn.Set();
    for (Hanging& handler : hanging) {
        EXPECT_TRUE(handler.HaveReached(2));
        EXPECT_TRUE(timer.RemoveHandler(&handler));
    }
}

TEST(MThreadTimer, AStopDuringThePassLeavesOutTheRestOfIt) {
    Ticks stopping;
    Ticks behind;
    MThreadTimer timer(kHourMs);
    stopping.action = [&] { timer.Stop(); };
    timer.AddHandler(&stopping);
    timer.AddHandler(&behind);
    ASSERT_TRUE(timer.Start());
    ASSERT_TRUE(timer.Wait(kDeadlineMs));
    EXPECT_EQ(stopping.count, 1);
    EXPECT_EQ(behind.count, 0);
}

TEST(MThreadTimer, AddingTwiceOrNullOrRemovingAStrangerDoesNothing) {
    Ticks ticks;
    Ticks stranger;
    Ticks last;
    MThreadTimer timer(kHourMs);
    timer.AddHandler(nullptr);
    timer.AddHandler(&ticks);
    timer.AddHandler(&ticks);
    timer.AddHandler(&last);
    timer.RemoveHandler(&stranger);
    timer.RemoveHandler(nullptr);
    ASSERT_TRUE(timer.Start());
    ASSERT_TRUE(last.HaveReached(1));
    EXPECT_EQ(ticks.count, 1);
}

TEST(MThreadTimer, ChangingTheHandlersFromWithinAPassIsHarmless) {
    Ticks leaving;
    Ticks joining;
    Ticks last;
    MThreadTimer timer(kHourMs);
    leaving.action = [&] {
        timer.RemoveHandler(&leaving);
        timer.AddHandler(&joining);
    };
    timer.AddHandler(&leaving);
    timer.AddHandler(&last);
    ASSERT_TRUE(timer.Start());
    ASSERT_TRUE(joining.HaveReached(1));
    EXPECT_EQ(last.count, 1) << "nobody was left out";
    EXPECT_EQ(leaving.count, 1);
}

TEST(MThreadTimer, ANewPeriodCountsFromTheNextSleepOn) {
    MThreadTimer timer(40, 1);
    EXPECT_EQ(timer.GetPeriod(), 40U);
    EXPECT_EQ(timer.GetResolution(), 1U);
    timer.SetPeriod(0, 5);
    EXPECT_EQ(timer.GetPeriod(), 1U) << "a sleep of nothing would keep a core busy";
    EXPECT_EQ(timer.GetResolution(), 5U);
    Ticks ticks;
    ticks.action = [&] { timer.SetPeriod(kHourMs, 1); };
    timer.AddHandler(&ticks);
    ASSERT_TRUE(timer.Start());
    EXPECT_TRUE(Eventually([&] { return timer.GetPeriod() == kHourMs; }));
    timer.RemoveHandler(&ticks);
    EXPECT_EQ(ticks.count, 1) << "the sleep behind the first pass has the new period";
}

TEST(MThreadTimer, HandlersComeAndGoWhileItRuns) {
    MThreadTimer timer(1);
    timer.SetStackSize(0x2001);
    ASSERT_TRUE(timer.Start(false));
    std::vector<std::thread> users;
    users.reserve(4);
    for (int i = 0; i < 4; ++i)
        users.emplace_back([&] {
            for (int round = 0; round < 50; ++round) {
                Ticks ticks; // gone right after it was removed
                timer.AddHandler(&ticks);
                if (round % 10 == 0) {
                    EXPECT_TRUE(ticks.HaveReached(1));
                }
                EXPECT_TRUE(timer.RemoveHandler(&ticks)) << "no call has hung, so none is left behind";
            }
        });
    for (auto& user : users)
        user.join();
}

TEST(MThreadTimer, TwoHundredHandlersThatDoNothingCostNearlyNothing) {
    std::vector<Ticks> handlers(200);
    MThreadTimer timer(kHourMs);
    double begin = 0;
    double pass = 0;
    handlers.front().action = [&] { begin = ProcessorMsOfThisThread(); };
    handlers.back().action = [&] { pass = ProcessorMsOfThisThread() - begin; };
    for (auto& handler : handlers)
        timer.AddHandler(&handler);
    ASSERT_TRUE(timer.Start());
    ASSERT_TRUE(handlers.back().HaveReached(1));
    timer.Stop();
    ASSERT_TRUE(timer.Wait(kDeadlineMs));
    EXPECT_LT(pass, 20) << "half of the period of a device's timer";
}
