#include "SystemThread.h"

#include <array>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Deadline.h"
#include "MEvent.h"

namespace {

constexpr std::size_t kImpossibleStack = std::size_t{1} << 60;

/// Uses more stack than a request of 8193 bytes would give.
std::uint32_t UseStack() {
    std::array<volatile unsigned char, 256 * 1024> block;
    for (std::size_t i = 0; i < block.size(); i += 4096)
        block[i] = 1;
    return block[4096];
}

} // namespace

TEST(SystemThread, RunsItsBodyOnceOnAnotherThread) {
    std::atomic<int> runs{0};
    std::thread::id id;
    const SystemThread thread = SystemThread::Create([&] {
        ++runs;
        id = std::this_thread::get_id();
        return 7U;
    });
    ASSERT_TRUE(thread);
    EXPECT_TRUE(thread.Join(kDeadlineMs));
    EXPECT_EQ(runs, 1);
    EXPECT_NE(id, std::this_thread::get_id());
    EXPECT_EQ(thread.GetExitValue(), 7U);
}

TEST(SystemThread, ReturnsAnEmptyHandleWhenTheSystemRefuses) {
    const SystemThread thread = SystemThread::Create([] { return 0U; }, kImpossibleStack);
    EXPECT_FALSE(thread);
    EXPECT_FALSE(SystemThread::Create([] { return 0U; }, static_cast<std::size_t>(-1)));
    EXPECT_FALSE(SystemThread::Create(nullptr));
}

TEST(SystemThread, AnEmptyHandleAnswersForNoThread) {
    SystemThread none;
    EXPECT_FALSE(none);
    EXPECT_TRUE(none.Join(0));
    EXPECT_EQ(none.GetExitValue(), 0U);
    EXPECT_FALSE(none.IsCurrent());
    EXPECT_FALSE(none.SetPriority(ThreadPriority::Normal));
    none.Detach();
}

TEST(SystemThread, ASmallStackIsRaisedToWhatThreadsNeed) {
    const SystemThread thread = SystemThread::Create(&UseStack, 8193);
    ASSERT_TRUE(thread);
    EXPECT_TRUE(thread.Join(kDeadlineMs));
    EXPECT_EQ(thread.GetExitValue(), 1U);
}

TEST(SystemThread, ATimedJoinGivesUpAndALaterOneSucceeds) {
    MEvent go;
    const SystemThread thread = SystemThread::Create([&] {
        go.Wait();
        return 0U;
    });
    ASSERT_TRUE(thread);
    EXPECT_FALSE(thread.Join(0));
    EXPECT_FALSE(thread.Join(5));
    go.Set();
    EXPECT_TRUE(thread.Join(kDeadlineMs));
    EXPECT_TRUE(thread.Join(0)) << "joining again finds it gone";
}

TEST(SystemThread, ManyThreadsMayWaitForOne) {
    MEvent go;
    const SystemThread thread = SystemThread::Create([&] {
        go.Wait();
        return 0U;
    });
    std::atomic<int> joined{0};
    std::vector<std::thread> waiters;
    waiters.reserve(4);
    for (int i = 0; i < 4; ++i)
        waiters.emplace_back([&] { joined += thread.Join(kDeadlineMs) ? 1 : 0; });
    go.Set();
    for (auto& waiter : waiters)
        waiter.join();
    EXPECT_EQ(joined, 4);
}

TEST(SystemThread, DoesNotWaitForItself) {
    MEvent known;
    SystemThread thread;
    std::atomic<bool> current{false};
    std::atomic<bool> joinedItself{true};
    thread = SystemThread::Create([&] {
        known.Wait();
        current = thread.IsCurrent();
        joinedItself = thread.Join();
        return 0U;
    });
    known.Set();
    EXPECT_FALSE(thread.IsCurrent());
    ASSERT_TRUE(thread.Join(kDeadlineMs));
    EXPECT_TRUE(current);
    EXPECT_FALSE(joinedItself);
}

TEST(SystemThread, ADetachedThreadRunsOnAndFreesWhatItHeld) {
    auto go = std::make_shared<MEvent>();
    const std::weak_ptr<MEvent> watched = go;
    SystemThread thread = SystemThread::Create([held = go] {
        held->Wait();
        return 0U;
    });
    thread.Detach();
    EXPECT_FALSE(thread);
    go->Set();
    go.reset();
    EXPECT_TRUE(Eventually([&] { return watched.expired(); }));
}

TEST(SystemThread, TakesEachPriorityAtItsStart) {
    for (int priority = 0; priority <= static_cast<int>(ThreadPriority::TimeCritical); ++priority) {
        const SystemThread thread = SystemThread::Create([] { return 1U; }, 0, static_cast<ThreadPriority>(priority));
        ASSERT_TRUE(thread) << priority;
        EXPECT_TRUE(thread.Join(kDeadlineMs));
        EXPECT_EQ(thread.GetExitValue(), 1U);
    }
}

TEST(SystemThread, LowersThePriorityOfARunningThreadAndRefusesForAnEndedOne) {
    MEvent go;
    const SystemThread thread = SystemThread::Create([&] {
        go.Wait();
        return 0U;
    });
    EXPECT_TRUE(thread.SetPriority(ThreadPriority::Lowest));
    go.Set();
    ASSERT_TRUE(thread.Join(kDeadlineMs));
    EXPECT_FALSE(thread.SetPriority(ThreadPriority::Lowest));
}
