#include <atomic>
#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <QObject>
#include <QTimer>

#include "CompletionGate.h"
#include "Deadline.h"
#include "OwnedArgument.h"
#include "PlainHost.h"
#include "ResultText.h"
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
    const bool allCame = Eventually([&] {
        ScriptInbox::Task task;
        for (; inbox.Take(task); ++run)
            task();
        return run == static_cast<std::size_t>(kPosters) * kTasksOfEach;
    });
    for (std::thread& poster : posters)
        poster.join();
    ASSERT_TRUE(allCame) << run;
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
    EXPECT_TRUE(Eventually([&] {
        TakeAll();
        return run >= kTasksOfEach;
    }));
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
    /// Waits for a call on a thread of its own. @return "yes" or "no" as the call gave, "left" when the
    /// wait ended without it.
    std::future<std::string> Waiting(CompletionGate::Call& open, std::uint32_t limitMs = CompletionGate::kNoLimit) {
        return std::async(std::launch::async, [this, &open, limitMs] { return WaitHere(open, limitMs); });
    }
    std::string WaitHere(CompletionGate::Call& open, std::uint32_t limitMs = CompletionGate::kNoLimit) {
        bool result = true;
        if (!gate.Wait(open, limitMs, result))
            return result ? "left with a result" : "left";
        return result ? "yes" : "no";
    }
    static std::string Get(std::future<std::string>& waiting) {
        if (waiting.wait_for(kDeadline) != std::future_status::ready)
            return "waits";
        return waiting.get();
    }

    CompletionGate gate;
    CompletionGate::Call call;
    CompletionGate::Call other;
};

TEST_F(Gate, GivesEachWaiterTheResultOfItsOwnCall) {
    auto first = Waiting(call);
    auto second = Waiting(other);
    gate.Complete(other, false);
    EXPECT_EQ(Get(second), "no");
    EXPECT_EQ(first.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    gate.Complete(call, true);
    EXPECT_EQ(Get(first), "yes");
}

TEST_F(Gate, DoesNotLoseACompletionThatComesBeforeTheWait) {
    gate.Complete(call, true);
    gate.Complete(other, false);
    auto first = Waiting(call);
    auto second = Waiting(other);
    EXPECT_EQ(Get(first), "yes");
    EXPECT_EQ(Get(second), "no");
}

TEST_F(Gate, LetsAWaiterGoAfterItsLimitWithoutAResult) {
    const auto start = std::chrono::steady_clock::now();
    auto waiting = Waiting(call, 30);
    EXPECT_EQ(Get(waiting), "left");
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
    auto again = Waiting(call, 0);
    EXPECT_EQ(Get(again), "left");
}

TEST_F(Gate, LetsEverybodyGoWhenItIsAbandonedAndFromThenOn) {
    auto first = Waiting(call);
    auto second = Waiting(other);
    gate.Abandon();
    EXPECT_EQ(Get(first), "left");
    EXPECT_EQ(Get(second), "left");
    CompletionGate::Call later;
    auto third = Waiting(later);
    EXPECT_EQ(Get(third), "left");
    gate.Complete(later, true); // nobody minds
}

TEST_F(Gate, StillTellsOfACompletionThatCameBeforeItWasAbandoned) {
    gate.Complete(call, true);
    gate.Abandon();
    auto waiting = Waiting(call);
    EXPECT_EQ(Get(waiting), "yes");
}

/// Waits on the main thread, which serves its events meanwhile.
class GateOfTheMainThread : public Gate {
protected:
    /// Runs once the wait serves events.
    template <typename Work>
    void WhileItWaits(Work work) {
        QTimer::singleShot(0, &context, work);
    }

    QObject context;
};

TEST_F(GateOfTheMainThread, ServesItsEventsUntilItsCallCompletes) {
    bool served = false;
    std::thread script;
    WhileItWaits([&] {
        served = true;
        script = std::thread([this] { gate.Complete(call, true); });
    });
    EXPECT_EQ(WaitHere(call), "yes");
    EXPECT_TRUE(served);
    script.join();
}

TEST_F(GateOfTheMainThread, ReturnsAtOnceWhenTheCallCompletedBefore) {
    gate.Complete(call, false);
    EXPECT_EQ(WaitHere(call), "no");
}

TEST_F(GateOfTheMainThread, WaitsOnWhenAnotherCallCompletes) {
    bool waitsOn = false;
    WhileItWaits([&] {
        gate.Complete(other, true);
        QTimer::singleShot(1, &context, [&] {
            waitsOn = true;
            gate.Complete(call, true);
        });
    });
    EXPECT_EQ(WaitHere(call), "yes");
    EXPECT_TRUE(waitsOn);
}

TEST_F(GateOfTheMainThread, ReturnsAfterItsLimit) {
    EXPECT_EQ(WaitHere(call, 5), "left");
}

TEST_F(GateOfTheMainThread, IsLetGoByAbandonAlsoWhenThatCameBefore) {
    WhileItWaits([&] { gate.Abandon(); });
    EXPECT_EQ(WaitHere(call), "left");
    EXPECT_EQ(WaitHere(other), "left");
}

TEST_F(GateOfTheMainThread, AWaitInsideAWaitEndsFirst) {
    std::string inner;
    WhileItWaits([&] {
        gate.Complete(call, true);
        WhileItWaits([&] { gate.Complete(other, false); });
        inner = WaitHere(other);
    });
    EXPECT_EQ(WaitHere(call), "yes");
    EXPECT_EQ(inner, "no");
}

TEST(ResultText, WritesWhatItWasGivenAndNothingOtherwise) {
    plain::Value target("Target", KXP_STRING_DATA, "before");
    ResultText result;
    result.WriteTo(target);
    EXPECT_EQ(target.Text(), "before");
    result.SetValueFromString("", 0, 0);
    result.WriteTo(target);
    EXPECT_EQ(target.Text(), "");
    result.SetValueFromString("after", 0, 0);
    result.WriteTo(target);
    EXPECT_EQ(target.Text(), "after");
}

TEST(OwnedArgument, KeepsTextsWhoseOwnerIsGoneAndNullAsNull) {
    std::string name = "a name that is too long for its string to hold";
    std::string text = "another text that is too long for that";
    const char* texts[kArgumentCount] = {text.c_str(), "b", nullptr, "behind the end"};
    OwnedArgument<const char*> owned(name.c_str());
    OwnedArgument<const char**> ownedTexts(texts);
    name.assign(name.size(), '#');
    text.assign(text.size(), '#');
    EXPECT_STREQ(owned.Get(), "a name that is too long for its string to hold");
    EXPECT_STREQ(ownedTexts.Get()[0], "another text that is too long for that");
    EXPECT_STREQ(ownedTexts.Get()[1], "b");
    EXPECT_EQ(ownedTexts.Get()[2], nullptr);
    EXPECT_EQ(OwnedArgument<const char*>(nullptr).Get(), nullptr);
    EXPECT_EQ(OwnedArgument<const char**>(nullptr).Get(), nullptr);
    EXPECT_EQ(OwnedArgument<IData*>(nullptr).Get(), nullptr);
}

} // namespace
