#include "MyCommandManager.h"

#include <functional>
#include <thread>

#include <gtest/gtest.h>

#include "CommandFixture.h"
#include "Deadline.h"
#include "MThread.h"
#include "MThreadTimer.h"

namespace {

/// A clock that a test advances.
struct FakeClock {
    std::atomic<std::uint32_t> nowMs{1000};
    MyCommandManager::MillisecondSource Source() {
        return [this] { return nowMs.load(); };
    }
};

/// Does with each command what the test says, and keeps the ids in order.
class Manager : public MyCommandManager {
public:
    using MyCommandManager::MyCommandManager;
    ~Manager() override { ClearCommands(); }

    bool ExecuteCommand(MCommandObject* command) override {
        executed.push_back(command->GetId());
        if (work)
            work(command);
        return true;
    }

    std::int32_t Post(std::int32_t id, void* request = nullptr, std::uint32_t timeoutMs = 0) {
        auto* command = new MCommandObject(this, id, 0, request ? &requests : nullptr, request);
        command->SetTimeout(timeoutMs);
        return PostCommand(command);
    }
    std::uint32_t CurrentTimeout() {
        const MCommandObject* current = LockCurrentCommand();
        const std::uint32_t timeoutMs = current ? current->GetTimeout() : 0;
        if (current)
            UnlockCurrentCommand();
        return timeoutMs;
    }
    bool LockIsFree() // asked on another thread, since the lock is recursive
    {
        bool seen = false;
        std::thread([&] {
            MCommandObject* current = nullptr;
            auto* const untouched = reinterpret_cast<MCommandObject*>(this);
            current = untouched;
            if (CheckCommandTimeout(&current))
                UnlockCurrentCommand();
            seen = current != untouched;
        }).join();
        return seen;
    }

    Requests requests;
    std::function<void(MCommandObject*)> work;
    std::vector<std::int32_t> executed; // by one thread at a time: under the manager's lock, or in tests of one thread
};

/// Finishes each command, as a device does with work that is complete.
void FinishEach(Manager& manager) {
    manager.work = [&manager](MCommandObject*) { manager.FinishCurrentCommand(nullptr); };
}

/// What the device's tick does with an expired command.
bool WatchOnce(Manager& manager) {
    MCommandObject* current = nullptr;
    if (!manager.CheckCommandTimeout(&current))
        return false;
    if (current->IncrementRetries() < 2) {
        manager.ExecuteCurrentCommand();
        manager.UnlockCurrentCommand();
        return false;
    }
    manager.FinishCurrentCommand(nullptr);
    if (manager.TakeNextCommand() == kCommandDone)
        manager.ExecuteCurrentCommand();
    manager.UnlockCurrentCommand();
    return true;
}

/// The body of a device's command thread.
class CommandThread : public IThreadHandler {
public:
    explicit CommandThread(MyCommandManager& manager)
        : m_manager(manager)
        , m_thread(this) {
        EXPECT_TRUE(m_thread.Start(true, kDeadlineMs));
    }
    ~CommandThread() override { Stop(); }
    void Stop() {
        m_thread.Stop();
        m_manager.WakeCommandThread();
        EXPECT_TRUE(m_thread.Wait(kDeadlineMs));
    }
    std::uint32_t ThreadRun(MThread* thread) override {
        while (!thread->StopRequested()) {
            if (!m_manager.WaitForCommand(kInfinite))
                continue;
            while (m_manager.TakeNextCommand() == kCommandDone && !thread->StopRequested())
                m_manager.ExecuteCurrentCommand();
        }
        return 0;
    }

private:
    MyCommandManager& m_manager;
    MThread m_thread;
};

} // namespace

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
