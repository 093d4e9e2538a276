#include "MScriptMngRemote.h"

#include <chrono>
#include <future>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "Deadline.h"
#include "FakeRemotes.h"
#include "FakeScriptDevice.h"

namespace {

constexpr std::chrono::seconds kDeadline(10);
using Calls = std::vector<std::string>;

class Bridge : public testing::Test {
protected:
    MScriptMngRemote& Make(IManagerRemote* olderLink, IManagerRemote2* newerLink) {
        remote = std::make_unique<MScriptMngRemote>(&device, olderLink, newerLink, nullptr, nullptr);
        return *remote;
    }
    MyAsyncDeviceExecContext* MakeAsyncContext() {
        return new MyAsyncDeviceExecContext(remote.get(), remote->GetAsyncContexts());
    }

    FakeScriptDevice device;
    FakeRemote older;
    FakeRemote2 newer;
    std::unique_ptr<MScriptMngRemote> remote;
};

TEST_F(Bridge, RegistersTheRootGroupOnTheNewerLinkAfterItsHandler) {
    EXPECT_EQ(Make(&older, &newer).RegisterRootGroup(), KXP_OK);
    EXPECT_EQ(newer.calls, (Calls{"SetHandler", "RegisterGroup|GrantedRootGroup|"}));
    EXPECT_EQ(newer.handler, remote.get());
    EXPECT_NE(newer.lastContext, nullptr);
    EXPECT_EQ(older.calls, Calls());
}

TEST_F(Bridge, SetsTheHandlerAtEachRegistration) {
    Make(nullptr, &newer).RegisterRootGroup();
    newer.handler = nullptr;
    remote->RegisterRootGroup();
    EXPECT_EQ(newer.handler, remote.get());
}

TEST_F(Bridge, UnregistersTheRootGroupOnTheNewerLinkWithoutAName) {
    EXPECT_EQ(Make(&older, &newer).UnregisterRootGroup(), KXP_OK);
    EXPECT_EQ(newer.calls, (Calls{"UnregisterGroup|-"}));
    EXPECT_EQ(older.calls, Calls());
}

TEST_F(Bridge, UsesTheOlderLinkOnlyWithoutTheNewer) {
    EXPECT_EQ(Make(&older, nullptr).RegisterRootGroup(), KXP_OK);
    EXPECT_EQ(older.calls, (Calls{"RegisterGroup|GrantedRootGroup"}));
    EXPECT_EQ(older.handler, remote.get());
    EXPECT_EQ(remote->UnregisterRootGroup(), KXP_OK);
    EXPECT_EQ(older.calls.back(), "UnregisterGroup");
}

TEST_F(Bridge, GivesTheOlderLinksCodeForARegistrationAndZeroForItsEnd) {
    older.code = 77;
    EXPECT_EQ(Make(&older, nullptr).RegisterRootGroup(), 77u);
    EXPECT_EQ(remote->UnregisterRootGroup(), KXP_OK);
}

TEST_F(Bridge, WithoutALinkGivesNineteen) {
    EXPECT_EQ(Make(nullptr, nullptr).RegisterRootGroup(), KXP_NOT_IMPLEMENTED);
    EXPECT_EQ(remote->UnregisterRootGroup(), KXP_NOT_IMPLEMENTED);
}

TEST_F(Bridge, PassesAnyOtherCodeOfTheHostThroughWithoutWaiting) {
    for (const KXPCode code : {1u, 19u, 20u, 22u, 48u, 0xFFFFFFFFu}) {
        newer.code = code;
        newer.onCall = [](IExecContext2* context) { context->Begin(); };
        EXPECT_EQ(Make(nullptr, &newer).RegisterRootGroup(), code);
    }
}

TEST_F(Bridge, TakesTheCodeOfAPendingCallFromItsContext) {
    newer.code = KXP_PENDING;
    newer.onCall = [](IExecContext2* context) {
        context->Begin();
        context->SetErrorCode(5);
        context->End();
    };
    EXPECT_EQ(Make(nullptr, &newer).RegisterRootGroup(), 5u);
}

TEST_F(Bridge, DoesNotWaitForAPendingCallThatTheHostNeverBegan) {
    newer.code = KXP_PENDING;
    EXPECT_EQ(Make(nullptr, &newer).RegisterRootGroup(), KXP_OK);
}

TEST_F(Bridge, WaitsForAPendingCallThatEndsOnAnotherThread) {
    newer.code = KXP_PENDING;
    std::thread host;
    newer.onCall = [&](IExecContext2* context) {
        context->Begin();
        host = std::thread([context] {
            context->SetErrorCode(9);
            context->End();
        });
    };
    EXPECT_EQ(Make(nullptr, &newer).UnregisterRootGroup(), 9u);
    host.join();
}

TEST_F(Bridge, EndsAPendingCallThatTheHostNeverEnds) {
    newer.code = KXP_PENDING;
    std::promise<void> begun;
    newer.onCall = [&](IExecContext2* context) {
        context->Begin();
        begun.set_value();
    };
    Make(nullptr, &newer);
    auto call = std::async(std::launch::async, [this] { return remote->RegisterRootGroup(); });
    ASSERT_EQ(begun.get_future().wait_for(kDeadline), std::future_status::ready);
    remote->EndContexts();
    ASSERT_EQ(call.wait_for(kDeadline), std::future_status::ready);
    EXPECT_EQ(call.get(), KXP_OK);
}

TEST_F(Bridge, LeavesAContextToTheHostThatKeepsIt) {
    newer.code = KXP_PENDING;
    IExecContext2* kept = nullptr;
    newer.onCall = [&](IExecContext2* context) {
        context->AddRef();
        context->Begin();
        context->End();
        kept = context;
    };
    EXPECT_EQ(Make(nullptr, &newer).RegisterRootGroup(), KXP_OK);
    remote->EndContexts();
    remote.reset();
    kept->SetErrorCode(3);
    kept->SetResultText("late");
    kept->End();
    kept->Release();
}

TEST_F(Bridge, EndsItsAsynchronousRequestsByTellingTheDevice) {
    Make(nullptr, &newer);
    auto* first = MakeAsyncContext();
    auto* second = MakeAsyncContext();
    remote->EndContexts();
    EXPECT_EQ(device.asyncResults, (std::vector<MyAsyncDeviceExecContext*>{first, second}));
    EXPECT_EQ(remote->GetAsyncContexts()->Count(), 2u);
}

TEST_F(Bridge, LetsManyRequestsGoInAnyOrderInTimeThatGrowsWithThemAlone) {
    Make(nullptr, &newer);
    constexpr std::size_t kMany = 300000;
    std::vector<MyAsyncDeviceExecContext*> contexts;
    for (std::size_t i = 0; i < kMany; ++i)
        contexts.push_back(MakeAsyncContext());
    const auto begin = std::chrono::steady_clock::now();
    for (auto context = contexts.rbegin(); context != contexts.rend(); ++context)
        remote->SettleAsyncContext(*context);
    EXPECT_TRUE(remote->GetAsyncContexts()->IsEmpty());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, kDeadline);
}

TEST_F(Bridge, EndsManyRequestsInTimeThatGrowsWithThemAlone) {
    Make(nullptr, &newer);
    constexpr std::size_t kMany = 300000; // one a second for three days; looking each one up would take minutes
    for (std::size_t i = 0; i < kMany; ++i)
        MakeAsyncContext();
    const auto begin = std::chrono::steady_clock::now();
    remote->EndContexts();
    EXPECT_EQ(device.asyncResults.size(), kMany);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, kDeadline);
}

TEST_F(Bridge, EndsEachAsynchronousRequestOnceHoweverOftenItEndsThemAll) {
    Make(nullptr, &newer);
    auto* context = MakeAsyncContext();
    context->AddRef();
    bool gone = false;
    QObject::connect(context, &QObject::destroyed, [&] { gone = true; });
    for (int i = 0; i < 4; ++i)
        remote->EndContexts();
    EXPECT_EQ(device.asyncResults.size(), 1u);
    EXPECT_FALSE(gone);
    remote.reset();
    ASSERT_FALSE(gone) << "the host still owes its answer";
    context->End();
    context->Release();
    EXPECT_TRUE(gone);
}

TEST_F(Bridge, DoesNotWaitForWhatAScriptAsksAfterItsRequestsWereEnded) {
    newer.code = KXP_PENDING;
    newer.onCall = [](IExecContext2* context) { context->Begin(); };
    Make(nullptr, &newer).EndContexts();
    auto call = std::async(std::launch::async, [this] { return remote->RegisterRootGroup(); });
    ASSERT_EQ(call.wait_for(kDeadline), std::future_status::ready);
    EXPECT_EQ(newer.calls.size(), 2u) << "the host is asked all the same";
}

TEST_F(Bridge, WaitsAgainInAStopFunctionAndNotBeyondItsTime) {
    newer.code = KXP_PENDING;
    std::promise<void> begun;
    newer.onCall = [&](IExecContext2* context) {
        context->Begin();
        if (newer.calls.back().rfind("RegisterGroup", 0) == 0)
            begun.set_value();
    };
    Make(nullptr, &newer).EndContexts();
    remote->AllowWaitsOfStop();
    auto call = std::async(std::launch::async, [this] { return remote->RegisterRootGroup(); });
    ASSERT_EQ(begun.get_future().wait_for(kDeadline), std::future_status::ready);
    EXPECT_EQ(call.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
    remote->RefuseWaits();
    ASSERT_EQ(call.wait_for(kDeadline), std::future_status::ready);
    remote->AllowWaitsOfStop();
    EXPECT_EQ(remote->UnregisterRootGroup(), KXP_OK) << "too late for the stop function";
}

TEST_F(Bridge, GivesUpTheAsynchronousRequestsOfTheLastRunAtAStart) {
    Make(nullptr, &newer);
    auto* context = MakeAsyncContext();
    context->AddRef();
    remote->OnDeviceStart();
    EXPECT_TRUE(remote->GetAsyncContexts()->IsEmpty());
    context->SetResultText("late");
    context->End();
    EXPECT_TRUE(device.asyncResults.empty());
}

TEST_F(Bridge, GivesUpItsAsynchronousRequestsAtItsEnd) {
    Make(nullptr, &newer);
    auto* context = MakeAsyncContext();
    context->AddRef();
    remote.reset();
    context->End();
    EXPECT_TRUE(device.asyncResults.empty());
}

TEST_F(Bridge, WithoutADeviceReleasesAnAsynchronousRequestThatEnds) {
    remote = std::make_unique<MScriptMngRemote>(nullptr, nullptr, nullptr, nullptr, nullptr);
    MakeAsyncContext()->End();
    EXPECT_TRUE(remote->GetAsyncContexts()->IsEmpty());
}

TEST_F(Bridge, MayEndContextsWhileTheHostEndsThemToo) {
    Make(nullptr, &newer);
    newer.code = KXP_PENDING;
    newer.onCall = [](IExecContext2* context) {
        context->AddRef();
        context->Begin();
        std::thread([context] {
            context->End();
            context->Release();
        }).detach();
    };
    std::atomic<bool> over{false};
    std::thread ender([&] {
        EXPECT_TRUE(Eventually([&] {
            remote->EndContexts();
            return over.load();
        }));
    });
    for (int i = 0; i < 300; ++i)
        EXPECT_EQ(remote->RegisterRootGroup(), KXP_OK);
    over = true;
    ender.join();
}

} // namespace
