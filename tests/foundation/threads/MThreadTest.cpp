#include "MThread.h"

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Deadline.h"

namespace {

/// A body that waits for its event, as a command thread does.
class WaitingBody : public IThreadHandler {
public:
    std::uint32_t ThreadRun(MThread* thread) override {
        ++runs;
        startedInside = thread->IsStarted();
        entered.Set();
        do
            wake.Wait();
        while (!thread->StopRequested());
        return 42;
    }

    MEvent wake;
    MEvent entered;
    std::atomic<int> runs{0};
    std::atomic<bool> startedInside{false};
};

class RunningItself : public MThread {
public:
    ~RunningItself() override { StopAndWait(); }
    std::uint32_t Run() override {
        passes = 0;
        while (!StopRequested()) {
            ++passes;
            Sleep(kInfinite);
        }
        return 5;
    }
    using MThread::WakeUp;
    std::atomic<int> passes{0};
};

class WaitingForItself : public IThreadHandler {
public:
    std::uint32_t ThreadRun(MThread* thread) override {
        result = thread->Wait(kInfinite);
        return 0;
    }
    std::atomic<bool> result{true};
};

/// Asks itself to end, takes that back, and says what it saw.
class ChangingItsMind : public IThreadHandler {
public:
    std::uint32_t ThreadRun(MThread* thread) override {
        thread->Stop();
        wasAsked = thread->StopRequested();
        thread->TakeStopBack();
        goesOn = !thread->StopRequested();
        return 0;
    }
    std::atomic<bool> wasAsked{false};
    std::atomic<bool> goesOn{false};
};

void StopAndJoin(MThread& thread, WaitingBody& body) {
    thread.Stop();
    body.wake.Set();
    ASSERT_TRUE(thread.Wait(kDeadlineMs));
}

} // namespace

TEST(MThread, IsStoppedBeforeItsFirstStart) {
    MThread thread;
    EXPECT_TRUE(thread.StopRequested());
    EXPECT_FALSE(thread.IsStarted());
    EXPECT_FALSE(thread.Stop()) << "there is no thread to ask";
    EXPECT_FALSE(thread.Stop(true));
    EXPECT_TRUE(thread.Wait(0));
}

TEST(MThread, RunsTheHandlerAndKeepsItsExitValue) {
    WaitingBody body;
    MThread thread(&body);
    ASSERT_TRUE(thread.Start(true, kDeadlineMs));
    ASSERT_TRUE(body.entered.Wait(kDeadlineMs));
    EXPECT_TRUE(thread.IsStarted());
    EXPECT_TRUE(body.startedInside);
    EXPECT_FALSE(thread.StopRequested());
    StopAndJoin(thread, body);
    EXPECT_FALSE(thread.IsStarted());
    EXPECT_TRUE(thread.StopRequested());
    EXPECT_EQ(thread.GetExitValue(), 42U);
}

TEST(MThread, StartOnAStartedThreadReturnsTrueAndCreatesNothing) {
    WaitingBody body;
    MThread thread(&body);
    ASSERT_TRUE(thread.Start(true, kDeadlineMs));
    ASSERT_TRUE(body.entered.Wait(kDeadlineMs));
    EXPECT_TRUE(thread.Start(true, kDeadlineMs));
    EXPECT_TRUE(thread.Start());
    StopAndJoin(thread, body);
    EXPECT_EQ(body.runs, 1);
}

TEST(MThread, WaitingForTheStartReturnsWhenTheThreadHasBegun) {
    WaitingBody body;
    MThread thread(&body);
    ASSERT_TRUE(thread.Start(true, kDeadlineMs));
    EXPECT_TRUE(thread.IsStarted());
    StopAndJoin(thread, body);
}

TEST(MThread, MayBeStartedAgain) {
    WaitingBody body;
    MThread thread(&body);
    for (int round = 1; round <= 50; ++round) {
        body.entered.Reset();
        body.wake.Reset();
        ASSERT_TRUE(thread.Start());
        ASSERT_TRUE(body.entered.Wait(kDeadlineMs));
        StopAndJoin(thread, body);
        EXPECT_EQ(body.runs, round);
    }
}

TEST(MThread, AStopBeforeTheBodyBeginsLeavesTheBodyOut) {
    for (int round = 0; round < 100; ++round) {
        WaitingBody body;
        body.wake.Set(); // should it begin nevertheless, it ends by the request
        MThread thread(&body);
        ASSERT_TRUE(thread.Start());
        thread.Stop();
        ASSERT_TRUE(thread.Wait(kDeadlineMs));
        EXPECT_TRUE(thread.StopRequested());
    }
}

TEST(MThread, WaitOnTheThreadItselfReturnsWithoutWaiting) {
    WaitingForItself body;
    MThread thread(&body);
    ASSERT_TRUE(thread.Start());
    ASSERT_TRUE(thread.Wait(kDeadlineMs));
    EXPECT_FALSE(body.result);
}

TEST(MThread, AThreadMayTakeItsOwnStopBack) {
    ChangingItsMind body;
    MThread thread(&body);
    ASSERT_TRUE(thread.Start());
    ASSERT_TRUE(thread.Wait(kDeadlineMs));
    EXPECT_TRUE(body.wasAsked);
    EXPECT_TRUE(body.goesOn);
}

TEST(MThread, NobodyElseTakesAStopBack) {
    WaitingBody body;
    MThread thread(&body);
    ASSERT_TRUE(thread.Start(true, kDeadlineMs));
    thread.Stop();
    thread.TakeStopBack();
    EXPECT_TRUE(thread.StopRequested());
    StopAndJoin(thread, body);
}

TEST(MThread, WaitGivesUpAfterItsTimeOut) {
    WaitingBody body;
    MThread thread(&body);
    ASSERT_TRUE(thread.Start());
    EXPECT_FALSE(thread.Wait(5));
    StopAndJoin(thread, body);
}

TEST(MThread, TheStopRoadEndsABodyThatBlocks) {
    WaitingBody body;
    MThread thread(&body);
    ASSERT_TRUE(thread.Start(true, kDeadlineMs));
    ASSERT_TRUE(body.entered.Wait(kDeadlineMs));
    EXPECT_TRUE(thread.Stop(false));
    body.wake.Set();
    EXPECT_TRUE(thread.Wait(kDeadlineMs));
}

TEST(MThread, TerminatingIsMeantToBeTheSameCooperativeStop) {
    WaitingBody body;
    MThread thread(&body);
    ASSERT_TRUE(thread.Start(true, kDeadlineMs));
    ASSERT_TRUE(body.entered.Wait(kDeadlineMs));
    EXPECT_TRUE(thread.Stop(true));
    EXPECT_FALSE(thread.Wait(5)) << "the body still blocks: nothing was killed";
    body.wake.Set();
    EXPECT_TRUE(thread.Wait(kDeadlineMs));
    EXPECT_EQ(thread.GetExitValue(), 42U);
}

TEST(MThread, WithoutHandlerItsOwnRunIsTheBody) {
    RunningItself thread;
    ASSERT_TRUE(thread.Start());
    EXPECT_TRUE(Eventually([&] { return thread.passes == 1; }));
    thread.WakeUp();
    EXPECT_TRUE(Eventually([&] { return thread.passes == 2; }));
    EXPECT_TRUE(thread.Stop()) << "wakes the sleep too";
    EXPECT_TRUE(thread.Wait(kDeadlineMs));
    EXPECT_EQ(thread.GetExitValue(), 5U);
}

TEST(MThread, ThePlainBodyReturnsAtOnceWithZero) {
    MThread thread;
    ASSERT_TRUE(thread.Start());
    EXPECT_TRUE(thread.Wait(kDeadlineMs));
    EXPECT_EQ(thread.GetExitValue(), 0U);
}

TEST(MThread, DestroyingARunningThreadStopsItAndWaits) {
    auto thread = std::make_unique<RunningItself>();
    ASSERT_TRUE(thread->Start(true, kDeadlineMs));
    thread.reset();
    SUCCEED() << "came back";
}

TEST(MThread, ReportsTheStackSizeThatWasSetAndRunsWithWhatItNeeds) {
    WaitingBody body;
    MThread thread(&body);
    EXPECT_EQ(thread.GetStackSize(), 0U);
    thread.SetStackSize(0x2001);
    EXPECT_EQ(thread.GetStackSize(), 8193U);
    ASSERT_TRUE(thread.Start());
    ASSERT_TRUE(body.entered.Wait(kDeadlineMs));
    StopAndJoin(thread, body);
    EXPECT_EQ(thread.GetStackSize(), 8193U);
}

TEST(MThread, AFailedStartLeavesItStopped) {
    WaitingBody body;
    MThread thread(&body);
    thread.SetStackSize(std::size_t{1} << 60);
    EXPECT_FALSE(thread.Start(true, kDeadlineMs));
    EXPECT_TRUE(thread.StopRequested());
    EXPECT_FALSE(thread.IsStarted());
    EXPECT_FALSE(thread.Stop());
    EXPECT_EQ(body.runs, 0);
    thread.SetStackSize(0);
    EXPECT_TRUE(thread.Start());
    StopAndJoin(thread, body);
}

TEST(MThread, ThreeIsNormalPriorityAndAValueAboveSixCountsAsNormal) {
    MThread thread;
    EXPECT_EQ(thread.GetPriority(), 3U);
    for (std::uint32_t priority = 0; priority <= 6; ++priority) {
        thread.SetPriority(priority);
        EXPECT_EQ(thread.GetPriority(), priority) << "kept though no thread runs";
    }
    thread.SetPriority(7);
    EXPECT_EQ(thread.GetPriority(), 3U);
    thread.SetPriority(6);
    thread.SetPriority(0xFFFFFFFF);
    EXPECT_EQ(thread.GetPriority(), 3U);
}

TEST(MThread, AThreadWithAnyPriorityRuns) {
    for (std::uint32_t priority = 0; priority <= 6; ++priority) {
        WaitingBody body;
        MThread thread(&body);
        thread.SetPriority(priority);
        ASSERT_TRUE(thread.Start(true, kDeadlineMs));
        ASSERT_TRUE(body.entered.Wait(kDeadlineMs));
        thread.SetPriority(3);
        StopAndJoin(thread, body);
    }
}

TEST(MThread, StartStopAndWaitMayRaceOnManyThreads) {
    RunningItself thread;
    std::vector<std::thread> users;
    users.reserve(4);
    for (int i = 0; i < 4; ++i)
        users.emplace_back([&, i] {
            for (int round = 0; round < 200; ++round) {
                thread.Start(i == 0, kDeadlineMs);
                thread.Stop(i == 1);
                thread.Wait(i == 2 ? 0 : kDeadlineMs);
            }
        });
    for (auto& user : users)
        user.join();
    thread.Stop();
    EXPECT_TRUE(thread.Wait(kDeadlineMs));
    EXPECT_FALSE(thread.IsStarted());
}
