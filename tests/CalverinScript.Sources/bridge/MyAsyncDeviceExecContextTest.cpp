#include "MyAsyncDeviceExecContext.h"

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "GivenReferences.h"

namespace {

class DoneWatcher : public IAsyncDeviceExecContextHandler {
public:
    virtual ~DoneWatcher() = default;
    void OnAsyncContextDone(MyAsyncDeviceExecContext* context) override {
        last = context;
        ++count;
    }
    std::atomic<MyAsyncDeviceExecContext*> last{nullptr};
    std::atomic<int> count{0};
};

class AsyncContext : public testing::Test {
protected:
    void TearDown() override { EXPECT_TRUE(registry->IsEmpty()); }
    MyAsyncDeviceExecContext* Make(IAsyncDeviceExecContextHandler* handler) {
        return new MyAsyncDeviceExecContext(handler, registry);
    }
    bool Lives(MyAsyncDeviceExecContext* context) const { return registry->Contains(context); }

    DoneWatcher watcher;
    SharedContextRegistry<MyAsyncDeviceExecContext> registry =
        std::make_shared<ContextRegistry<MyAsyncDeviceExecContext>>();
};

TEST_F(AsyncContext, IsInItsRegistryWhileItLives) {
    auto* context = Make(&watcher);
    EXPECT_TRUE(Lives(context));
    context->Release();
    EXPECT_FALSE(Lives(context));
}

TEST_F(AsyncContext, TellsItsHandlerOfTheFirstEndAndKeepsItsReferences) {
    auto* context = Make(&watcher);
    EXPECT_EQ(context->End(), KXP_OK);
    EXPECT_EQ(watcher.count, 1);
    EXPECT_EQ(watcher.last, context);
    EXPECT_TRUE(Lives(context));
    context->Release();
}

TEST_F(AsyncContext, DropsAReferenceAtTheSecondEndInsteadOfTellingAgain) {
    auto* context = Make(&watcher);
    context->AddRef();
    context->End();
    context->End();
    EXPECT_EQ(watcher.count, 1);
    EXPECT_TRUE(Lives(context));
    context->Release();
    EXPECT_FALSE(Lives(context));
}

TEST_F(AsyncContext, LeavesEveryReferenceButTheGivenOneToAHostThatEndsItAgainAndAgain) {
    for (const bool isRefused : {false, true}) {
        SCOPED_TRACE(isRefused);
        watcher.count = 0;
        auto* context = Make(&watcher);
        context->AddRef(); // what the host is given
        context->AddRef(); // one of its own
        if (isRefused)
            context->ForgetHandler();
        for (int i = 0; i < 5; ++i)
            context->End();
        EXPECT_EQ(watcher.count, isRefused ? 0 : 1);
        ASSERT_TRUE(Lives(context));
        context->Settle();
        ASSERT_TRUE(Lives(context)) << "the host's own reference holds it";
        context->End();
        ASSERT_TRUE(Lives(context));
        context->Release();
        EXPECT_FALSE(Lives(context));
    }
}

TEST_F(AsyncContext, WithoutAHandlerDropsAReferenceAtItsEnd) {
    auto* context = Make(nullptr);
    context->End();
    EXPECT_FALSE(Lives(context));
}

TEST_F(AsyncContext, WhoseHandlerWasForgottenDropsAReferenceAtItsEnd) {
    auto* context = Make(&watcher);
    context->ForgetHandler();
    context->End();
    EXPECT_EQ(watcher.count, 0);
    EXPECT_FALSE(Lives(context));
}

/// The ways in which a host treats the reference that it was given, and one of its own.
struct HostHabit {
    const char* name;
    bool addsItsOwn;
    int ends;
    int releases;
};
constexpr HostHabit kHabits[] = {
    {"ends it and forgets it", false, 1, 0},
    {"ends it and drops what it was given", false, 1, 1},
    {"ends it and drops a reference of its own", true, 1, 1},
    {"ends it twice and drops a reference of its own", true, 2, 1},
    {"never answers and drops a reference of its own", true, 0, 1},
};

TEST_F(AsyncContext, GivenUpByItsMakerLivesUntilTheHostHasAnsweredInItsOwnWay) {
    for (const HostHabit& habit : kHabits) {
        SCOPED_TRACE(habit.name);
        bool gone = false;
        watcher.count = 0;
        auto* context = Make(&watcher);
        QObject::connect(context, &QObject::destroyed, [&] { gone = true; });
        context->AddRef(); // what the host is given
        if (habit.addsItsOwn)
            context->AddRef();
        EXPECT_TRUE(context->GiveUp());
        EXPECT_FALSE(context->GiveUp());
        EXPECT_EQ(watcher.count, 1);
        context->Settle();
        for (int i = 0; i < habit.ends; ++i) {
            ASSERT_FALSE(gone);
            context->SetResultText("late");
            context->End();
        }
        for (int i = 0; i < habit.releases; ++i) {
            ASSERT_FALSE(gone);
            context->Release();
        }
        EXPECT_EQ(watcher.count, 1);
        if (!gone) // the test's host has gone: drop for it what it was given
            context->Release();
        EXPECT_TRUE(gone);
    }
}

TEST_F(AsyncContext, AnsweredAndSettledStaysForAHostThatDropsWhatItWasGivenLate) {
    const std::size_t before = GivenReferences::Instance().Count();
    auto* context = Make(&watcher);
    context->AddRef();
    context->End();
    context->Settle();
    EXPECT_EQ(GivenReferences::Instance().Count(), before + 1);
    EXPECT_TRUE(Lives(context));
    context->Release();
    EXPECT_FALSE(Lives(context));
    EXPECT_EQ(GivenReferences::Instance().Count(), before);
}

TEST_F(AsyncContext, AnswersOfYearsLeaveAThousandReferencesThatHostsNeverDrop) {
    constexpr std::size_t kYears = 5000;
    std::size_t gone = 0;
    for (std::size_t i = 0; i < kYears; ++i) {
        auto* context = Make(&watcher);
        QObject::connect(context, &QObject::destroyed, [&gone] { ++gone; });
        context->AddRef();
        if (i % 2 == 0)
            context->End();
        else
            context->GiveUp();
        context->Settle();
        if (i % 2 != 0)
            context->End();
    }
    EXPECT_EQ(GivenReferences::Instance().Count(), GivenReferences::kMost);
    EXPECT_GE(gone, kYears - GivenReferences::kMost);
    for (MyAsyncDeviceExecContext* context : registry->HoldAll()) {
        context->Release();
        context->Release();
    }
    EXPECT_EQ(gone, kYears);
}

TEST_F(AsyncContext, LeavesItsStateAloneAtItsEnd) {
    auto* context = Make(&watcher);
    context->End();
    EXPECT_EQ(context->GetState(), 0u);
    context->Release();
    context = Make(&watcher);
    context->Begin();
    context->End();
    EXPECT_EQ(context->GetState(), 1u);
    context->Release();
}

TEST_F(AsyncContext, EndedOnManyThreadsAtOnceTellsItsHandlerOnce) {
    constexpr int kThreads = 4;
    for (int round = 0; round < 200; ++round) {
        watcher.count = 0;
        auto* context = Make(&watcher);
        context->AddRef();
        std::vector<std::thread> threads;
        threads.reserve(kThreads);
        for (int i = 0; i < kThreads; ++i)
            threads.emplace_back([context] { context->End(); });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(watcher.count, 1);
        ASSERT_TRUE(Lives(context));
        context->Release();
        ASSERT_FALSE(Lives(context));
    }
}

TEST_F(AsyncContext, MayBeEndedByAHostAfterTheDeviceIsGone) {
    auto* context = Make(&watcher);
    context->AddRef();
    context->ForgetHandler();
    context->Release();
    std::weak_ptr<ContextRegistry<MyAsyncDeviceExecContext>> watched = registry;
    registry = std::make_shared<ContextRegistry<MyAsyncDeviceExecContext>>();
    context->SetResultText("late");
    context->End();
    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(watcher.count, 0);
}

} // namespace
