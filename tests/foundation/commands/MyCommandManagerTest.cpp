#include "MyCommandManager.h"

#include <thread>

#include <gtest/gtest.h>

#include "ManagerFixture.h"

TEST(MyCommandManager, TheBaseExecutesNothingAndReturnsTrue) {
    MyCommandManager manager;
    EXPECT_TRUE(manager.ExecuteCommand(nullptr));
    EXPECT_EQ(manager.GetMaxQueued(), 1000);
}

TEST(MyCommandManager, WithoutCommandsEverythingSaysSo) {
    Manager manager;
    EXPECT_EQ(manager.TakeNextCommand(), -2);
    EXPECT_EQ(manager.ExecuteCurrentCommand(), -2);
    EXPECT_EQ(manager.FinishCurrentCommand(nullptr), -2);
    EXPECT_EQ(manager.HoldCurrentCommand(), -2);
    EXPECT_EQ(manager.PostCommand(nullptr), -1);
    EXPECT_EQ(manager.PostCommandNow(nullptr), -1);
    EXPECT_EQ(manager.LockCurrentCommand(), nullptr);
    EXPECT_TRUE(manager.LockIsFree());
    EXPECT_FALSE(manager.WaitForCommand(0));
    manager.ClearCommands();
}

TEST(MyCommandManager, APostQueuesAndWakes) {
    Manager manager;
    EXPECT_EQ(manager.Post(1), 2);
    EXPECT_EQ(manager.GetQueuedCount(), 1);
    EXPECT_TRUE(manager.WaitForCommand(0));
    EXPECT_TRUE(manager.executed.empty()) << "nothing runs on the poster's thread";
}

TEST(MyCommandManager, CommandsRunInTheOrderOfTheirPosts) {
    Manager manager;
    FinishEach(manager);
    for (int id = 1; id <= 5; ++id)
        manager.Post(id);
    while (manager.TakeNextCommand() == 0)
        EXPECT_EQ(manager.ExecuteCurrentCommand(), 0);
    EXPECT_EQ(manager.executed, (std::vector<std::int32_t>{1, 2, 3, 4, 5}));
}

TEST(MyCommandManager, TakingIsRefusedWhileACommandIsCurrent) {
    Manager manager;
    manager.Post(1);
    manager.Post(2);
    EXPECT_EQ(manager.TakeNextCommand(), 0);
    EXPECT_EQ(manager.TakeNextCommand(), -3);
    EXPECT_EQ(manager.GetQueuedCount(), 1);
    EXPECT_FALSE(manager.WaitForCommand(0)) << "the wake-up was cleared in either case";
    EXPECT_EQ(manager.FinishCurrentCommand(nullptr), 0);
    EXPECT_TRUE(manager.WaitForCommand(0)) << "another one waits";
    EXPECT_EQ(manager.TakeNextCommand(), 0);
    EXPECT_EQ(manager.FinishCurrentCommand(nullptr), 0);
    EXPECT_FALSE(manager.WaitForCommand(0)) << "nobody waits";
}

TEST(MyCommandManager, FinishingEndsTheRequest) {
    Manager manager;
    int request = 0;
    manager.Post(1, &request);
    manager.TakeNextCommand();
    EXPECT_EQ(manager.requests.Ended(), 0U);
    EXPECT_EQ(manager.FinishCurrentCommand(nullptr), 0);
    EXPECT_TRUE(manager.requests.HasEnded(&request));
    EXPECT_EQ(manager.FinishCurrentCommand(nullptr), -2);
}

TEST(MyCommandManager, AKeptCommandBelongsToTheCaller) {
    Manager manager;
    int request = 0;
    manager.Post(1, &request);
    manager.TakeNextCommand();
    std::unique_ptr<MCommandObject> kept(manager.LockCurrentCommand());
    EXPECT_EQ(manager.FinishCurrentCommand(kept.get()), 0);
    manager.UnlockCurrentCommand();
    EXPECT_EQ(manager.requests.Ended(), 0U);
    EXPECT_EQ(manager.TakeNextCommand(), -2) << "nothing is current any more";
    kept.reset();
    EXPECT_TRUE(manager.requests.HasEnded(&request));
}

TEST(MyCommandManager, ACommandMayFinishItselfWhileItExecutes) {
    Manager manager;
    FinishEach(manager);
    int request = 0;
    manager.Post(1, &request);
    manager.TakeNextCommand();
    EXPECT_EQ(manager.ExecuteCurrentCommand(), 0);
    EXPECT_TRUE(manager.requests.HasEnded(&request));
    EXPECT_TRUE(manager.LockIsFree());
}

TEST(MyCommandManager, AHeldCommandStaysCurrentAndClearsTheWakeUp) {
    Manager manager;
    manager.work = [&](MCommandObject*) { EXPECT_EQ(manager.HoldCurrentCommand(), 0); };
    manager.Post(1);
    manager.TakeNextCommand();
    manager.Post(2);
    EXPECT_EQ(manager.ExecuteCurrentCommand(), 0);
    EXPECT_FALSE(manager.WaitForCommand(0));
    EXPECT_EQ(manager.TakeNextCommand(), -3);
}

TEST(MyCommandManager, ACommandWithoutTimeOutGetsTheDefaultAndOneWithKeepsIt) {
    Manager manager(1234);
    manager.Post(1);
    manager.Post(2, nullptr, 77);
    manager.TakeNextCommand();
    EXPECT_EQ(manager.CurrentTimeout(), 1234U);
    manager.FinishCurrentCommand(nullptr);
    manager.TakeNextCommand();
    EXPECT_EQ(manager.CurrentTimeout(), 77U);
}

TEST(MyCommandManager, APostToAQueueOf1001DropsTheOldestEndsItsRequestAndReturns3) {
    Manager manager;
    std::vector<int> posted(1002);
    for (int i = 0; i < 1001; ++i)
        EXPECT_EQ(manager.Post(i, &posted[static_cast<std::size_t>(i)]), 2) << i;
    EXPECT_EQ(manager.GetQueuedCount(), 1001);
    EXPECT_EQ(manager.Post(1001, &posted[1001]), 3);
    EXPECT_EQ(manager.GetQueuedCount(), 1001);
    EXPECT_EQ(manager.requests.Ended(), 1U);
    EXPECT_TRUE(manager.requests.HasEnded(&posted[0]));
    FinishEach(manager);
    manager.TakeNextCommand();
    manager.ExecuteCurrentCommand();
    EXPECT_EQ(manager.executed, std::vector<std::int32_t>{1});
}

TEST(MyCommandManager, TheLimitOfTheQueueMayBeChanged) {
    Manager manager;
    manager.SetMaxQueued(0);
    EXPECT_EQ(manager.GetMaxQueued(), 0);
    EXPECT_EQ(manager.Post(1), 2);
    EXPECT_EQ(manager.Post(2), 3);
    manager.SetMaxQueued(-7);
    EXPECT_EQ(manager.GetMaxQueued(), 0);
    EXPECT_EQ(manager.Post(3), 3);
    EXPECT_EQ(manager.GetQueuedCount(), 1);
}

TEST(MyCommandManager, ClearingEndsQueuedAndCurrentRequests) {
    Manager manager;
    int requests[3] = {};
    for (int& request : requests)
        manager.Post(1, &request);
    manager.TakeNextCommand();
    manager.ClearCommands();
    EXPECT_EQ(manager.requests.Ended(), 3U);
    EXPECT_EQ(manager.TakeNextCommand(), -2);
}

TEST(MyCommandManager, DestroyingItEndsWhatIsLeft) {
    Requests requests;
    {
        MyCommandManager manager;
        manager.PostCommand(new MCommandObject(nullptr, 1, 0, &requests, nullptr));
        manager.PostCommand(new MCommandObject(nullptr, 2, 0, &requests, nullptr));
        manager.TakeNextCommand();
    }
    EXPECT_EQ(requests.Ended(), 2U);
}

TEST(MyCommandManager, DirectExecutionRunsWhenNothingElseIsThere) {
    Manager manager(5000, true);
    FinishEach(manager);
    EXPECT_EQ(manager.Post(1), 1);
    EXPECT_EQ(manager.executed, std::vector<std::int32_t>{1});
    EXPECT_TRUE(manager.LockIsFree());
}

TEST(MyCommandManager, DirectExecutionQueuesBehindACurrentOrQueuedCommand) {
    Manager manager(5000, true);
    EXPECT_EQ(manager.Post(1), 1) << "stays current, nobody finished it";
    EXPECT_EQ(manager.Post(2), 2) << "one is current";
    manager.FinishCurrentCommand(nullptr);
    EXPECT_EQ(manager.Post(3), 2) << "one is queued";
    EXPECT_EQ(manager.executed, std::vector<std::int32_t>{1});
}

TEST(MyCommandManager, DirectExecutionQueuesWhileAnotherThreadHoldsTheLock) {
    Manager manager(5000, true);
    MEvent inside;
    MEvent goOn;
    manager.work = [&](MCommandObject*) {
        inside.Set();
        goOn.Wait(kDeadlineMs);
        manager.FinishCurrentCommand(nullptr);
    };
    std::thread executing([&] { EXPECT_EQ(manager.Post(1), 1); });
    ASSERT_TRUE(inside.Wait(kDeadlineMs));
    EXPECT_EQ(manager.Post(2), 2);
    goOn.Set();
    executing.join();
    EXPECT_EQ(manager.executed, std::vector<std::int32_t>{1});
}

TEST(MyCommandManager, PostCommandNowRunsOrLeavesTheCommandToTheCaller) {
    Manager manager;
    auto first = std::make_unique<MCommandObject>(nullptr, 1);
    EXPECT_EQ(manager.PostCommandNow(first.release()), 1);
    auto second = std::make_unique<MCommandObject>(nullptr, 2);
    EXPECT_EQ(manager.PostCommandNow(second.get()), -3) << "the first is still current";
    EXPECT_EQ(second->GetTimeout(), 5000U);
    manager.FinishCurrentCommand(nullptr);
    manager.Post(3);
    EXPECT_EQ(manager.PostCommandNow(second.get()), -3) << "one is queued";
    EXPECT_EQ(manager.executed, std::vector<std::int32_t>{1});
    EXPECT_TRUE(manager.LockIsFree());
}

TEST(MyCommandManager, PostCommandNowIsBusyWhileAnotherThreadHoldsTheLock) {
    Manager manager;
    manager.Post(1);
    manager.TakeNextCommand();
    ASSERT_NE(manager.LockCurrentCommand(), nullptr);
    std::thread([&] {
        const auto command = std::make_unique<MCommandObject>(nullptr, 2);
        EXPECT_EQ(manager.PostCommandNow(command.get()), -3);
    }).join();
    manager.UnlockCurrentCommand();
}

TEST(MyCommandManager, TheLockIsHeldWhileACommandExecutesIfSoWanted) {
    for (const bool hold : {true, false}) {
        Manager manager(5000, false, hold);
        manager.work = [&](MCommandObject*) { EXPECT_EQ(manager.LockIsFree(), !hold); };
        manager.Post(1);
        manager.TakeNextCommand();
        manager.ExecuteCurrentCommand();
        EXPECT_EQ(manager.executed.size(), 1U);
        EXPECT_TRUE(manager.LockIsFree());
    }
}

TEST(MyCommandManager, AnExecutionThatThrowsLeavesTheLockFree) {
    Manager manager;
    manager.work = [](MCommandObject*) { throw 1; };
    manager.Post(1);
    manager.TakeNextCommand();
    EXPECT_THROW(manager.ExecuteCurrentCommand(), int);
    EXPECT_TRUE(manager.LockIsFree());
}
