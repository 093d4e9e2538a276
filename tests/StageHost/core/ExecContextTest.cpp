#include "ExecContext.h"

#include <thread>

#include <gtest/gtest.h>

using namespace stagehost;

TEST(ExecContext, GoesFromCreatedToBegunToEnded) {
    auto* context = new ExecContext;
    EXPECT_EQ(context->GetState(), 0u);
    EXPECT_EQ(context->Begin(), KXP_OK);
    EXPECT_EQ(context->GetState(), 1u);
    EXPECT_EQ(context->End(), KXP_OK);
    EXPECT_EQ(context->GetState(), 2u);
    context->Begin();
    EXPECT_EQ(context->GetState(), 2u) << "a late Begin does not reopen it";
    context->Release();
}

TEST(ExecContext, CarriesCodeAndText) {
    auto* context = new ExecContext;
    context->SetErrorCode(48);
    context->SetResultText("text");
    EXPECT_EQ(context->ErrorCode(), 48u);
    EXPECT_EQ(context->ResultText(), "text");
    context->SetResultText(nullptr);
    EXPECT_EQ(context->ResultText(), "");
    context->Release();
}

TEST(ExecContext, AnswersForBothOfItsInterfaces) {
    auto* context = new ExecContext;
    IExecContext* const plain = context;
    EXPECT_EQ(QueryFace<IExecContext2>(plain, "IExecContext2"), context);
    EXPECT_EQ(QueryFace<IExecContext>(plain, "IExecContext"), context);
    EXPECT_EQ(QueryFace<IMInterface>(plain, "IMInterface"), context);
    EXPECT_EQ(QueryFace<IMInterface>(plain, "IData"), nullptr);
    EXPECT_EQ(context->Reserved4(nullptr) | context->Reserved5(nullptr) | context->Reserved7(nullptr) |
                  context->Reserved8(nullptr, nullptr, nullptr),
              KXP_OK);
    context->Release();
}

TEST(ExecContext, WaitsForAnEndFromAnotherThread) {
    auto* context = new ExecContext;
    std::thread device([context] { context->End(); });
    EXPECT_TRUE(context->WaitEnded(std::chrono::seconds(10)));
    device.join();
    context->Release();
}

TEST(ExecContext, GivesUpWaitingAtTheLimit) {
    auto* context = new ExecContext;
    context->Begin();
    EXPECT_FALSE(context->WaitEnded(std::chrono::milliseconds(1)));
    context->Release();
}

TEST(ExecContext, TellsOfItsEndOnce) {
    int ends = 0;
    auto* context = new ExecContext([&] { ++ends; });
    context->End();
    context->End();
    EXPECT_EQ(ends, 1);
    context->Release();
}

TEST(ExecContext, LivesAsLongAsSomebodyRefersToIt) {
    int ends = 0;
    auto* context = new ExecContext([&] { ++ends; });
    context->AddRef();
    context->Release();
    context->End(); // the device's reference keeps it alive
    EXPECT_EQ(ends, 1);
    context->Release();
}

TEST(ExecContext, MayBeReleasedByItsMakerInTheMomentOfItsEnd) {
    for (int round = 0; round < 200; ++round) {
        auto* context = new ExecContext;
        std::thread device([context] { context->End(); });
        ASSERT_TRUE(context->WaitEnded(std::chrono::seconds(10)));
        context->Release();
        device.join();
    }
}
