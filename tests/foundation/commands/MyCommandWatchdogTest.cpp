#include <thread>

#include <gtest/gtest.h>

#include "ManagerFixture.h"
#include "MyCommandManager.h"

TEST(MyCommandManager, TheWatchdogTellsTheCurrentCommand) {
    Manager manager;
    auto* current = reinterpret_cast<MCommandObject*>(&manager);
    EXPECT_FALSE(manager.CheckCommandTimeout(&current));
    EXPECT_EQ(current, nullptr);
    EXPECT_FALSE(manager.CheckCommandTimeout(nullptr));
    manager.Post(6);
    manager.TakeNextCommand();
    EXPECT_FALSE(manager.CheckCommandTimeout(&current));
    ASSERT_NE(current, nullptr);
    EXPECT_EQ(current->GetId(), 6);
    EXPECT_TRUE(manager.LockIsFree());
}

TEST(MyCommandManager, ACommandExpiresWhenItsTimeOutIsReached) {
    FakeClock clock;
    Manager manager(100, false, true, clock.Source());
    manager.Post(1);
    manager.TakeNextCommand();
    manager.ExecuteCurrentCommand();
    clock.nowMs += 99;
    EXPECT_FALSE(manager.CheckCommandTimeout(nullptr));
    clock.nowMs += 1;
    EXPECT_TRUE(manager.CheckCommandTimeout(nullptr));
    EXPECT_TRUE(manager.LockIsFree()) << "nobody asked for the command";
}

TEST(MyCommandManager, OnlyAnExpiredCommandThatWasAskedForLeavesTheLockHeld) {
    FakeClock clock;
    Manager manager(100, false, true, clock.Source());
    manager.Post(1);
    manager.TakeNextCommand();
    manager.ExecuteCurrentCommand();
    MCommandObject* current = nullptr;
    EXPECT_FALSE(manager.CheckCommandTimeout(&current));
    EXPECT_TRUE(manager.LockIsFree());
    clock.nowMs += 100;
    EXPECT_TRUE(manager.CheckCommandTimeout(&current));
    EXPECT_FALSE(manager.LockIsFree());
    manager.UnlockCurrentCommand();
    EXPECT_TRUE(manager.LockIsFree());
}

TEST(MyCommandManager, ACommandThatHasNotBeenStartedNeverExpires) {
    FakeClock clock;
    Manager manager(1, false, true, clock.Source());
    manager.Post(1);
    manager.TakeNextCommand();
    clock.nowMs += 1000000;
    EXPECT_FALSE(manager.CheckCommandTimeout(nullptr));
}

TEST(MyCommandManager, ACommandWithoutAnyTimeOutNeverExpires) {
    FakeClock clock;
    Manager manager(0, false, true, clock.Source());
    manager.Post(1);
    manager.TakeNextCommand();
    manager.ExecuteCurrentCommand();
    clock.nowMs += 4000000000U;
    EXPECT_FALSE(manager.CheckCommandTimeout(nullptr));
}

TEST(MyCommandManager, TheWatchdogCountsOnOverTheWrapOfTheClock) {
    FakeClock clock;
    clock.nowMs = 0xFFFFFFFF - 10;
    Manager manager(100, false, true, clock.Source());
    manager.Post(1);
    manager.TakeNextCommand();
    manager.ExecuteCurrentCommand();
    clock.nowMs += 99;
    EXPECT_FALSE(manager.CheckCommandTimeout(nullptr));
    clock.nowMs += 1;
    EXPECT_TRUE(manager.CheckCommandTimeout(nullptr));
}

TEST(MyCommandManager, AClockThatReadsZeroAtTheStartDoesNotSwitchTheWatchdogOff) {
    FakeClock clock;
    clock.nowMs = 0;
    Manager manager(100, false, true, clock.Source());
    manager.Post(1);
    manager.TakeNextCommand();
    manager.ExecuteCurrentCommand();
    clock.nowMs = 500;
    EXPECT_TRUE(manager.CheckCommandTimeout(nullptr));
}

TEST(MyCommandManager, AHeldCommandIsExecutedOnceMoreAndFinishedAtItsSecondTimeOut) {
    FakeClock clock;
    Manager manager(100, false, true, clock.Source());
    int request = 0;
    manager.work = [&](MCommandObject* command) {
        if (command->GetId() == 1)
            manager.HoldCurrentCommand();
        else
            manager.FinishCurrentCommand(nullptr);
    };
    manager.Post(1, &request);
    manager.TakeNextCommand();
    manager.ExecuteCurrentCommand();
    manager.Post(2);
    EXPECT_FALSE(WatchOnce(manager));
    EXPECT_EQ(manager.executed, std::vector<std::int32_t>{1});
    clock.nowMs += 100;
    EXPECT_FALSE(WatchOnce(manager));
    EXPECT_EQ(manager.executed, (std::vector<std::int32_t>{1, 1}));
    EXPECT_FALSE(WatchOnce(manager)) << "its time began anew";
    clock.nowMs += 100;
    EXPECT_TRUE(WatchOnce(manager));
    EXPECT_TRUE(manager.requests.HasEnded(&request));
    EXPECT_EQ(manager.executed, (std::vector<std::int32_t>{1, 1, 2})) << "the queue goes on";
    EXPECT_TRUE(manager.LockIsFree());
}

TEST(MyCommandManager, AnExecutingCommandCannotTimeOut) {
    FakeClock clock;
    Manager manager(100, false, true, clock.Source());
    bool expired = true;
    manager.work = [&](MCommandObject*) {
        clock.nowMs += 1000;
        std::thread([&] { expired = manager.CheckCommandTimeout(nullptr); }).join();
        manager.FinishCurrentCommand(nullptr);
    };
    manager.Post(1);
    manager.TakeNextCommand();
    manager.ExecuteCurrentCommand();
    EXPECT_FALSE(expired);
}

TEST(MyCommandManager, TheCommandThreadExecutesWhatManyThreadsPostInEachOnesOrder) {
    Manager manager;
    manager.SetMaxQueued(1000000);
    FinishEach(manager);
    constexpr int kPosters = 4;
    constexpr int kEach = 2000;
    int request = 0;
    {
        CommandThread thread(manager);
        std::vector<std::thread> posters;
        posters.reserve(kPosters);
        for (int p = 0; p < kPosters; ++p)
            posters.emplace_back([&, p] {
                for (int n = 0; n < kEach; ++n)
                    EXPECT_EQ(manager.Post(p * kEach + n, &request), 2);
            });
        for (auto& poster : posters)
            poster.join();
        EXPECT_TRUE(Eventually([&] { return manager.requests.Ended() == kPosters * kEach; }));
    }
    ASSERT_EQ(manager.executed.size(), static_cast<std::size_t>(kPosters * kEach));
    std::vector<int> last(kPosters, -1);
    for (const std::int32_t id : manager.executed) {
        EXPECT_GT(id, last[static_cast<std::size_t>(id / kEach)]);
        last[static_cast<std::size_t>(id / kEach)] = id;
    }
}

TEST(MyCommandManager, EveryRequestEndsOnceWhenPostersWatchdogAndStopRace) {
    int request = 0;
    std::size_t begun = 0;
    FakeClock clock;
    Manager manager(3, false, true, clock.Source());
    manager.SetMaxQueued(50);
    manager.work = [&](MCommandObject* command) {
        if (command->GetId() % 3 == 0)
            manager.HoldCurrentCommand();
        else
            manager.FinishCurrentCommand(nullptr);
    };
    std::atomic<bool> done{false};
    {
        CommandThread thread(manager);
        std::thread watchdog([&] {
            while (!done) {
                ++clock.nowMs;
                WatchOnce(manager);
                std::this_thread::yield();
            }
        });
        std::vector<std::thread> posters;
        posters.reserve(3);
        for (int p = 0; p < 3; ++p)
            posters.emplace_back([&] {
                for (int n = 0; n < 1000; ++n)
                    manager.Post(n, &request);
            });
        for (auto& poster : posters)
            poster.join();
        EXPECT_TRUE(Eventually([&] { return manager.GetQueuedCount() == 0; })) << "held ones do not stop the queue";
        done = true;
        watchdog.join();
        manager.ClearCommands();
    }
    begun = manager.requests.Begun();
    EXPECT_EQ(begun, 3000U);
    EXPECT_EQ(manager.requests.Ended(), begun);
}

TEST(MyCommandManager, AStopWhileTheCommandThreadWaitsComesBack) {
    for (int round = 0; round < 100; ++round) {
        Manager manager;
        FinishEach(manager);
        CommandThread thread(manager);
        if (round % 2)
            manager.Post(round);
        thread.Stop();
    }
}

TEST(MyCommandManager, AStopWhileACommandIsHeldComesBack) {
    Manager manager;
    MEvent held;
    manager.work = [&](MCommandObject*) {
        manager.HoldCurrentCommand();
        held.Set();
    };
    int request = 0;
    CommandThread thread(manager);
    manager.Post(1, &request);
    ASSERT_TRUE(held.Wait(kDeadlineMs));
    thread.Stop();
    manager.ClearCommands();
    EXPECT_TRUE(manager.requests.HasEnded(&request));
}

TEST(MyCommandManager, AHandlerMayUseTheManagerWhenItsCommandEnds) {
    struct Reposting : ICommandObjectHandler {
        void OnCommandCreated(void*) override {}
        void OnCommandDestroyed(void*) override { result = manager->PostCommand(new MCommandObject(nullptr, 2)); }
        MyCommandManager* manager = nullptr;
        std::int32_t result = 0;
    } handler;
    Manager manager;
    handler.manager = &manager;
    manager.PostCommand(new MCommandObject(nullptr, 1, 0, &handler, nullptr));
    manager.TakeNextCommand();
    EXPECT_EQ(manager.FinishCurrentCommand(nullptr), 0);
    EXPECT_EQ(handler.result, 2);
    EXPECT_TRUE(manager.WaitForCommand(0));
    EXPECT_EQ(manager.GetQueuedCount(), 1);
}
