#include "WorkerPool.h"

#include <atomic>
#include <future>

#include <gtest/gtest.h>

#include "ExitGuard.h"
#include "MainWait.h"
#include "NoMoreThreads.h"

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

TEST(WorkerPool, ACallWithoutAThreadWaitsForOneThatGetsFree) {
    WorkerPool pool;
    const NoMoreThreads none;
    std::promise<void> gate;
    const auto occupied = pool.Run([&] { gate.get_future().wait(); });
    std::atomic<bool> ran{false};
    const auto task = pool.Run([&] { ran = true; });
    EXPECT_FALSE(task->IsDone());
    gate.set_value();
    EXPECT_TRUE(MainWait::Until([&] { return task->IsDone(); }, kLong));
    EXPECT_TRUE(ran);
}

TEST(WorkerPool, ACallThatIsWithdrawnNeverBegins) {
    WorkerPool pool;
    const NoMoreThreads none;
    std::promise<void> gate;
    std::promise<void> begun;
    const auto occupied = pool.Run([&] {
        begun.set_value();
        gate.get_future().wait();
    });
    begun.get_future().wait();
    const auto used = std::make_shared<std::atomic<bool>>(false);
    const auto task = pool.Run([used] { *used = true; });
    EXPECT_TRUE(task->Withdraw());
    EXPECT_TRUE(task->IsDone());
    EXPECT_EQ(used.use_count(), 1) << "what it would have used is let go of";
    EXPECT_FALSE(task->Withdraw());
    EXPECT_FALSE(occupied->Withdraw());
    EXPECT_FALSE(occupied->IsDone());
    gate.set_value();
    EXPECT_TRUE(pool.Close(kLong));
    EXPECT_TRUE(occupied->IsDone());
    EXPECT_FALSE(*used);
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
