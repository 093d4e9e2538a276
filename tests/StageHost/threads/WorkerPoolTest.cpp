#include "WorkerPool.h"

#include <atomic>
#include <future>

#include <gtest/gtest.h>

#include "ExitGuard.h"
#include "MainWait.h"

using namespace stagehost;

namespace {

constexpr std::chrono::seconds kLong(20);

} // namespace

TEST(WorkerPool, RunsCallsOnThreadsOfItsOwn) {
    WorkerPool pool;
    std::thread::id thread;
    const auto task = pool.Run([&] { thread = std::this_thread::get_id(); });
    ASSERT_TRUE(MainWait::Until([&] { return task->IsDone(); }, kLong));
    EXPECT_NE(thread, std::this_thread::get_id());
    EXPECT_TRUE(pool.Close(kLong));
}

TEST(WorkerPool, IsNotHeldUpByACallThatBlocks) {
    WorkerPool pool;
    std::promise<void> gate;
    const auto blocked = pool.Run([&] { gate.get_future().wait(); });
    for (int round = 0; round < 20; ++round) {
        const auto task = pool.Run([] {});
        ASSERT_TRUE(MainWait::Until([&] { return task->IsDone(); }, kLong));
    }
    EXPECT_FALSE(blocked->IsDone());
    EXPECT_FALSE(pool.Close(std::chrono::milliseconds(1)));
    gate.set_value();
    EXPECT_TRUE(pool.Close(kLong));
    EXPECT_TRUE(blocked->IsDone());
}

TEST(WorkerPool, FinishesWhatWasGivenBeforeItCloses) {
    std::atomic<int> done{0};
    WorkerPool pool;
    for (int number = 0; number < 50; ++number)
        pool.Run([&] { ++done; });
    EXPECT_TRUE(pool.Close(kLong));
    EXPECT_EQ(done, 50);
}

TEST(MainWait, LooksOnceWhenTheLimitIsZero) {
    int looks = 0;
    EXPECT_FALSE(MainWait::Until([&] { return ++looks > 100; }, std::chrono::milliseconds(0)));
    EXPECT_EQ(looks, 1);
}

TEST(MainWait, IsWokenFromAnyThread) {
    std::atomic<bool> flag{false};
    std::thread other([&] {
        flag = true;
        MainWait::Wake();
    });
    EXPECT_TRUE(MainWait::Until([&] { return flag.load(); }, kLong));
    other.join();
}

TEST(MainWait, EndsAtItsLimit) {
    EXPECT_FALSE(MainWait::Until([] { return false; }, std::chrono::milliseconds(5)));
}

TEST(ExitGuard, LeavesTheProcessWhenACallDoesNotComeBack) {
    EXPECT_EXIT(
        {
            const ExitGuard guard(std::chrono::milliseconds(10), 3, "gone");
            std::promise<void>().get_future().wait();
        },
        testing::ExitedWithCode(3), "stagehost: gone");
}

TEST(ExitGuard, DoesNothingWhenTheCallComesBack) {
    { const ExitGuard guard(kLong, 3, "gone"); }
    SUCCEED();
}
