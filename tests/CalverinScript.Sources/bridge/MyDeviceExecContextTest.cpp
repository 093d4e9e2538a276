#include "MyDeviceExecContext.h"

#include <chrono>
#include <future>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

namespace {

constexpr std::chrono::seconds kWaitDeadline(10);

class SyncContext : public testing::Test {
protected:
    void TearDown() override {
        context->Release();
        EXPECT_TRUE(registry->IsEmpty());
    }
    /// Waits on a thread of its own.
    std::future<void> Waiting() {
        return std::async(std::launch::async, [this] { context->Wait(); });
    }
    static bool IsOver(const std::future<void>& waiting, std::chrono::milliseconds limit) {
        return waiting.wait_for(limit) == std::future_status::ready;
    }

    SharedContextRegistry<MyDeviceExecContext> registry = std::make_shared<ContextRegistry<MyDeviceExecContext>>();
    MyDeviceExecContext* context = new MyDeviceExecContext(registry);
};

TEST_F(SyncContext, IsInItsRegistryWhileItLives) {
    EXPECT_TRUE(registry->Contains(context));
    auto* other = new MyDeviceExecContext(registry);
    EXPECT_EQ(registry->Count(), 2u);
    other->Release();
    EXPECT_EQ(registry->Count(), 1u);
    EXPECT_TRUE(registry->Contains(context));
}

TEST_F(SyncContext, ThatNobodyBeganIsNotWaitedForAndHasErrorCodeZero) {
    auto waiting = Waiting();
    EXPECT_TRUE(IsOver(waiting, kWaitDeadline));
    EXPECT_EQ(context->GetErrorCode(), 0u);
}

TEST_F(SyncContext, ThatWasBegunIsWaitedForUntilItsEnd) {
    context->Begin();
    auto waiting = Waiting();
    EXPECT_FALSE(IsOver(waiting, std::chrono::milliseconds(20)));
    context->End();
    EXPECT_TRUE(IsOver(waiting, kWaitDeadline));
}

TEST_F(SyncContext, EndedBeforeTheWaitIsNotWaitedFor) {
    context->Begin();
    context->End();
    auto waiting = Waiting();
    EXPECT_TRUE(IsOver(waiting, kWaitDeadline));
}

TEST_F(SyncContext, StaysEndedForLaterWaitersAndAfterASecondEnd) {
    context->Begin();
    context->End();
    context->End();
    context->Wait();
    context->Wait();
}

TEST_F(SyncContext, BegunAgainIsWaitedForAgain) {
    context->Begin();
    context->End();
    context->Begin();
    auto waiting = Waiting();
    EXPECT_FALSE(IsOver(waiting, std::chrono::milliseconds(20)));
    context->End();
    EXPECT_TRUE(IsOver(waiting, kWaitDeadline));
}

TEST_F(SyncContext, LeavesItsStateAsItWasMade) {
    context->Begin();
    EXPECT_EQ(context->GetState(), 0u);
    context->End();
    EXPECT_EQ(context->GetState(), 0u);
}

TEST_F(SyncContext, ShowsItsWaiterWhatTheHostWroteBeforeTheEnd) {
    for (int i = 0; i < 500; ++i) {
        context->Begin();
        std::thread host([&] {
            context->SetErrorCode(static_cast<KXPCode>(i));
            context->SetResultText(std::to_string(i).c_str());
            context->End();
        });
        context->Wait();
        EXPECT_EQ(context->GetErrorCode(), static_cast<KXPCode>(i));
        EXPECT_EQ(context->GetResult(), std::to_string(i).c_str());
        host.join();
    }
}

TEST_F(SyncContext, MayBeGivenUpByAHostAfterTheDeviceIsGone) {
    context->AddRef();
    context->Release();
    std::weak_ptr<ContextRegistry<MyDeviceExecContext>> watched = registry;
    registry.reset();
    EXPECT_FALSE(watched.expired());
    context->SetResultText("late");
    context->End();
    context->Release();
    EXPECT_TRUE(watched.expired());
    registry = std::make_shared<ContextRegistry<MyDeviceExecContext>>();
    context = new MyDeviceExecContext(registry);
}

} // namespace
