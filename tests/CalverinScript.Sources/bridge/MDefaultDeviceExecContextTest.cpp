#include "MDefaultDeviceExecContext.h"

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

/// Says when it is deleted.
class WatchedContext : public MDefaultDeviceExecContext {
public:
    explicit WatchedContext(std::atomic<int>& deletions)
        : m_deletions(deletions) {}
    ~WatchedContext() override { ++m_deletions; }

private:
    std::atomic<int>& m_deletions;
};

class EndWatcher : public IExecContextEndHandler {
public:
    virtual ~EndWatcher() = default;
    void OnContextEnd(MDefaultDeviceExecContext* context) override {
        ended.push_back(context);
        stateAtEnd = context->GetState();
        text = context->GetResult().c_str();
    }
    std::vector<MDefaultDeviceExecContext*> ended;
    std::uint32_t stateAtEnd = 99;
    std::string text;
};

TEST(ExecContext, AnswersToItsThreeNamesAndNoOther) {
    MDefaultDeviceExecContext context;
    for (const char* name : {"IMInterface", "IExecContext", "IExecContext2"}) {
        void* out = nullptr;
        EXPECT_EQ(context.QueryInterface(name, &out), KXP_OK) << name;
        EXPECT_EQ(out, static_cast<IExecContext2*>(&context)) << name;
    }
    for (const char* name : {"", "iexeccontext", "IExecContext3", "IExecContext ", "IKXPDevice"}) {
        void* out = &context;
        EXPECT_EQ(context.QueryInterface(name, &out), KXP_NO_INTERFACE) << name;
        EXPECT_EQ(out, nullptr) << name;
    }
}

TEST(ExecContext, RefusesANullNameAndANullPlace) {
    MDefaultDeviceExecContext context;
    void* out = &context;
    EXPECT_EQ(context.QueryInterface(nullptr, &out), KXP_BAD_INTERFACE_ARG);
    EXPECT_EQ(out, &context);
    EXPECT_EQ(context.QueryInterface("IExecContext", nullptr), KXP_BAD_INTERFACE_ARG);
    EXPECT_EQ(context.QueryInterface(nullptr, nullptr), KXP_BAD_INTERFACE_ARG);
}

TEST(ExecContext, IsCreatedThenBegunThenEnded) {
    MDefaultDeviceExecContext context;
    EXPECT_EQ(context.GetState(), 0u);
    EXPECT_EQ(context.Begin(), KXP_OK);
    EXPECT_EQ(context.GetState(), 1u);
    EXPECT_EQ(context.End(), KXP_OK);
    EXPECT_EQ(context.GetState(), 2u);
}

TEST(ExecContext, MayEndWithoutABeginningAndBeginAfterItsEnd) {
    MDefaultDeviceExecContext context;
    context.End();
    EXPECT_EQ(context.GetState(), 2u);
    context.Begin();
    EXPECT_EQ(context.GetState(), 1u);
}

TEST(ExecContext, TellsItsHandlerOfTheEndBeforeTheStateChanges) {
    EndWatcher watcher;
    MDefaultDeviceExecContext context(&watcher);
    context.Begin();
    context.SetResultText("done");
    EXPECT_TRUE(watcher.ended.empty());
    context.End();
    EXPECT_EQ(watcher.ended, std::vector<MDefaultDeviceExecContext*>{&context});
    EXPECT_EQ(watcher.stateAtEnd, 1u);
    EXPECT_EQ(watcher.text, "done");
    EXPECT_EQ(context.GetState(), 2u);
}

TEST(ExecContext, TellsItsHandlerOfEveryEnd) {
    EndWatcher watcher;
    MDefaultDeviceExecContext context(&watcher);
    context.End();
    context.End();
    EXPECT_EQ(watcher.ended.size(), 2u);
}

TEST(ExecContext, KeepsTheLastErrorCode) {
    MDefaultDeviceExecContext context;
    EXPECT_EQ(context.GetErrorCode(), 0u);
    EXPECT_EQ(context.SetErrorCode(0xFFFFFFFF), KXP_OK);
    EXPECT_EQ(context.GetErrorCode(), 0xFFFFFFFFu);
    context.SetErrorCode(3);
    EXPECT_EQ(context.GetErrorCode(), 3u);
}

TEST(ExecContext, KeepsACopyOfTheLastResultText) {
    MDefaultDeviceExecContext context;
    EXPECT_STREQ(context.GetResult().c_str(), "");
    std::string text = "one";
    EXPECT_EQ(context.SetResultText(text.c_str()), KXP_OK);
    text = "two";
    EXPECT_STREQ(context.GetResult().c_str(), "one");
    context.SetResultText("longer than before");
    EXPECT_STREQ(context.GetResult().c_str(), "longer than before");
    context.SetResultText("");
    EXPECT_EQ(context.GetResult().GetLength(), 0);
}

TEST(ExecContext, TakesANullResultTextForTheEmptyOne) {
    MDefaultDeviceExecContext context;
    context.SetResultText("old");
    EXPECT_EQ(context.SetResultText(nullptr), KXP_OK);
    EXPECT_EQ(context.GetResult().GetLength(), 0);
}

TEST(ExecContext, DoesNothingInItsReservedOperations) {
    MDefaultDeviceExecContext context;
    context.Begin();
    context.SetResultText("kept");
    EXPECT_EQ(context.Reserved4(nullptr), KXP_OK);
    EXPECT_EQ(context.Reserved5(&context), KXP_OK);
    EXPECT_EQ(context.Reserved7(nullptr), KXP_OK);
    EXPECT_EQ(context.Reserved8(nullptr, &context, nullptr), KXP_OK);
    EXPECT_EQ(context.GetState(), 1u);
    EXPECT_STREQ(context.GetResult().c_str(), "kept");
}

TEST(ExecContext, IsDeletedByItsLastRelease) {
    std::atomic<int> deletions{0};
    auto* context = new WatchedContext(deletions);
    EXPECT_EQ(context->AddRef(), KXP_OK);
    EXPECT_EQ(context->Release(), KXP_OK);
    EXPECT_EQ(deletions, 0);
    EXPECT_EQ(context->Release(), KXP_OK);
    EXPECT_EQ(deletions, 1);
}

TEST(ExecContext, IsDeletedOnceWhenManyThreadsReleaseIt) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 1000;
    std::atomic<int> deletions{0};
    auto* context = new WatchedContext(deletions);
    for (int i = 0; i < kThreads; ++i)
        context->AddRef();
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([context] {
            for (int k = 0; k < kRounds; ++k) {
                context->AddRef();
                context->Release();
            }
            context->Release();
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(deletions, 0);
    context->Release();
    EXPECT_EQ(deletions, 1);
}

TEST(ExecContext, MayBeWrittenOnOneThreadAndReadOnAnother) {
    MDefaultDeviceExecContext context;
    std::atomic<bool> over{false};
    std::thread host([&] {
        for (int i = 0; i < 5000; ++i) {
            context.SetResultText(i % 2 == 0 ? "even" : "odd and longer");
            context.SetErrorCode(static_cast<KXPCode>(i));
        }
        over = true;
    });
    while (!over) {
        const std::string text = context.GetResult().c_str();
        EXPECT_TRUE(text.empty() || text == "even" || text == "odd and longer") << text;
    }
    host.join();
    EXPECT_EQ(context.GetErrorCode(), 4999u);
}

} // namespace
