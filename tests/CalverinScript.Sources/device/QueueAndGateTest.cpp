#include <atomic>
#include <chrono>
#include <future>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <QEventLoop>
#include <QTimer>

#include "CompletionGate.h"
#include "ScriptInbox.h"

namespace {

constexpr std::chrono::seconds kDeadline(10);
constexpr int kPosters = 4;
constexpr int kTasksOfEach = 2000;

/// An inbox whose wake-ups are counted.
class Inbox : public testing::Test {
protected:
    void TakeAll() {
        ScriptInbox::Task task;
        while (inbox.Take(task))
            task();
    }

    std::atomic<int> wakeUps{0};
    ScriptInbox inbox{[this] { ++wakeUps; }};
};

TEST_F(Inbox, RunsTheTasksOfOneThreadInTheOrderInWhichTheyWerePosted) {
    std::vector<std::vector<int>> seen(kPosters);
    std::vector<std::thread> posters;
    posters.reserve(kPosters);
    for (std::size_t p = 0; p < kPosters; ++p)
        posters.emplace_back([&, p] {
            for (int i = 0; i < kTasksOfEach; ++i)
                inbox.Post([&seen, p, i] { seen[p].push_back(i); });
        });
    std::size_t run = 0;
    ScriptInbox::Task task;
    while (run < static_cast<std::size_t>(kPosters) * kTasksOfEach)
        if (inbox.Take(task)) {
            task();
            ++run;
        }
    for (std::thread& poster : posters)
        poster.join();
    for (const std::vector<int>& order : seen) {
        ASSERT_EQ(order.size(), static_cast<std::size_t>(kTasksOfEach));
        EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    }
}

TEST_F(Inbox, RunsEveryTaskThatItAcceptedExactlyOnce) {
    std::atomic<int> accepted{0};
    int run = 0;
    std::vector<std::thread> posters;
    posters.reserve(kPosters);
    for (int p = 0; p < kPosters; ++p)
        posters.emplace_back([&] {
            for (int i = 0; i < kTasksOfEach; ++i)
                accepted += inbox.Post([&run] { ++run; }) ? 1 : 0;
        });
    while (run < kTasksOfEach)
        TakeAll();
    inbox.Close();
    for (std::thread& poster : posters)
        poster.join();
    TakeAll();
    EXPECT_EQ(run, accepted);
}

TEST_F(Inbox, AcceptsNothingAfterClose) {
    int run = 0;
    EXPECT_TRUE(inbox.Post([&] { ++run; }));
    inbox.Close();
    EXPECT_FALSE(inbox.Post([&] { run += 100; }));
    EXPECT_EQ(wakeUps, 1);
    TakeAll();
    EXPECT_EQ(run, 1) << "what was accepted stays to be taken";
    EXPECT_FALSE(inbox.Post([&] { run += 100; }));
    inbox.Close();
    TakeAll();
    EXPECT_EQ(run, 1);
}

TEST_F(Inbox, WakesOnceForABurst) {
    for (int i = 0; i < 100; ++i)
        inbox.Post([] {});
    EXPECT_EQ(wakeUps, 1);
    TakeAll();
    EXPECT_EQ(wakeUps, 1);
    inbox.Post([] {});
    EXPECT_EQ(wakeUps, 2);
}

TEST_F(Inbox, DoesNotWakeForATaskThatIsPostedWhileItIsEmptied) {
    int run = 0;
    inbox.Post([&] { inbox.Post([&] { ++run; }); });
    TakeAll();
    EXPECT_EQ(run, 1);
    EXPECT_EQ(wakeUps, 1);
}

TEST_F(Inbox, CountsAsIdleOnlyAfterATakeThatFoundNothing) {
    ScriptInbox::Task task;
    inbox.Post([] {});
    EXPECT_TRUE(inbox.Take(task));
    inbox.Post([] {});
    EXPECT_EQ(wakeUps, 1);
    EXPECT_TRUE(inbox.Take(task));
    EXPECT_FALSE(inbox.Take(task));
    inbox.Post([] {});
    EXPECT_EQ(wakeUps, 2);
}

TEST(ScriptInbox, WakesUnderNoLock) {
    ScriptInbox* self = nullptr;
    int run = 0;
    ScriptInbox inbox([&] {
        ScriptInbox::Task task;
        while (self->Take(task))
            task();
        self->Close();
    });
    self = &inbox;
    EXPECT_TRUE(inbox.Post([&] { ++run; }));
    EXPECT_EQ(run, 1);
    EXPECT_FALSE(inbox.Post([] {}));
}

class Gate : public testing::Test {
protected:
    static constexpr MarshalledCall kCall = MarshalledCall::EvaluateScript;
    static constexpr MarshalledCall kOther = MarshalledCall::ExecuteCallBack;

    /// Waits on a thread of its own for the next completion.
    std::future<bool> Waiting(MarshalledCall call) {
        return std::async(std::launch::async, [this, call, seen = gate.Current(call)] {
            return gate.WaitPast(call, seen, CompletionGate::kNoLimit);
        });
    }
    static bool Get(std::future<bool>& waiting) {
        EXPECT_EQ(waiting.wait_for(kDeadline), std::future_status::ready);
        return waiting.get();
    }

    CompletionGate gate;
};

TEST_F(Gate, CountsTheCompletionsOfEachKindByItself) {
    gate.Notify(kCall);
    gate.Notify(kCall);
    gate.Notify(kOther);
    EXPECT_EQ(gate.Current(kCall), 2u);
    EXPECT_EQ(gate.Current(kOther), 1u);
    EXPECT_EQ(gate.Current(MarshalledCall::ClearTimers), 0u);
}

TEST_F(Gate, DoesNotLoseACompletionThatComesBeforeTheWait) {
    const CompletionGate::Generation seen = gate.Current(kCall);
    gate.Notify(kCall);
    EXPECT_TRUE(gate.WaitPast(kCall, seen, CompletionGate::kNoLimit));
}

TEST_F(Gate, LetsEveryWaiterOfAKindGoWhicheverCallItWasThatCompleted) {
    auto first = Waiting(kCall);
    auto second = Waiting(kCall);
    gate.Notify(kCall);
    EXPECT_TRUE(Get(first));
    EXPECT_TRUE(Get(second));
}

TEST_F(Gate, DoesNotLetAWaiterGoForACallOfAnotherKind) {
    const CompletionGate::Generation seen = gate.Current(kCall);
    gate.Notify(kOther);
    EXPECT_FALSE(gate.WaitPast(kCall, seen, 0));
    EXPECT_FALSE(gate.WaitPast(kCall, seen, 5));
}

TEST_F(Gate, LetsAWaiterGoAfterItsLimit) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(gate.WaitPast(kCall, gate.Current(kCall), 30));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
}

TEST_F(Gate, LetsEverybodyGoWhenItIsAbandonedAndFromThenOn) {
    auto first = Waiting(kCall);
    auto second = Waiting(kOther);
    gate.Abandon();
    EXPECT_FALSE(Get(first));
    EXPECT_FALSE(Get(second));
    EXPECT_FALSE(gate.WaitPast(kCall, gate.Current(kCall), CompletionGate::kNoLimit));
}

TEST_F(Gate, StillTellsOfACompletionThatCameBeforeItWasAbandoned) {
    const CompletionGate::Generation seen = gate.Current(kCall);
    gate.Notify(kCall);
    gate.Abandon();
    EXPECT_TRUE(gate.WaitPast(kCall, seen, CompletionGate::kNoLimit));
}

/// A loop that counts as hung when it is still running at the deadline.
class JoinedLoop : public Gate {
protected:
    void SetUp() override {
        deadline.setSingleShot(true);
        QObject::connect(&deadline, &QTimer::timeout, &loop, [this] { loop.exit(1); });
        deadline.start(kDeadline);
    }

    QEventLoop loop;
    QTimer deadline;
};

TEST_F(JoinedLoop, QuitsWithTheNextCallOfItsKind) {
    const CompletionGate::JoinLoop join(gate, kCall, loop);
    std::thread script([this] { gate.Notify(kCall); });
    EXPECT_EQ(loop.exec(), 0);
    script.join();
}

TEST_F(JoinedLoop, QuitsAtOnceWhenTheCallCompletedBeforeItRan) {
    const CompletionGate::JoinLoop join(gate, kCall, loop);
    gate.Notify(kCall);
    EXPECT_EQ(loop.exec(), 0);
}

TEST_F(JoinedLoop, RunsOnWhenACallOfAnotherKindCompletes) {
    const CompletionGate::JoinLoop join(gate, kCall, loop);
    bool wasRunning = false;
    gate.Notify(kOther);
    QMetaObject::invokeMethod(
        &loop,
        [&] {
            wasRunning = loop.isRunning();
            gate.Notify(kCall);
        },
        Qt::QueuedConnection);
    EXPECT_EQ(loop.exec(), 0);
    EXPECT_TRUE(wasRunning);
}

TEST_F(JoinedLoop, QuitsWhenTheGateIsAbandoned) {
    const CompletionGate::JoinLoop join(gate, kCall, loop);
    std::thread host([this] { gate.Abandon(); });
    EXPECT_EQ(loop.exec(), 0);
    host.join();
}

TEST_F(JoinedLoop, QuitsAtOnceWhenTheGateWasAbandonedBeforeItJoined) {
    gate.Abandon();
    const CompletionGate::JoinLoop join(gate, kCall, loop);
    EXPECT_EQ(loop.exec(), 0);
}

TEST_F(JoinedLoop, IsLeftAloneOnceItHasLeft) {
    { const CompletionGate::JoinLoop join(gate, kCall, loop); }
    gate.Notify(kCall);
    gate.Abandon();
    QMetaObject::invokeMethod(
        &loop, [this] { loop.exit(7); }, Qt::QueuedConnection);
    EXPECT_EQ(loop.exec(), 7);
}

TEST_F(JoinedLoop, QuitsTogetherWithOthersOfItsKind) {
    QEventLoop inner;
    const CompletionGate::JoinLoop join(gate, kCall, loop);
    QMetaObject::invokeMethod(
        &loop,
        [&] {
            const CompletionGate::JoinLoop innerJoin(gate, kCall, inner);
            gate.Notify(kCall);
            EXPECT_EQ(inner.exec(), 0);
        },
        Qt::QueuedConnection);
    EXPECT_EQ(loop.exec(), 0);
}

} // namespace
