#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "CommandRoad.h"
#include "Deadline.h"
#include "ICommandObjectHandler.h"
#include "IThreadHandler.h"
#include "MyCommandManager.h"
#include "PlainHost.h"

namespace {

/// A road without a device: its queue, its thread and what it does are the test's.
class Road : public testing::Test,
             public MyCommandManager,
             public IThreadHandler,
             public ICommandObjectHandler,
             public ICommandWork {
protected:
    Road()
        : MyCommandManager(5000, false, true, [this] { return nowMs; }) {}
    void TearDown() override { road.Stop(); }

    // MyCommandManager, IThreadHandler, ICommandObjectHandler
    using MyCommandManager::ExecuteCommand;
    bool ExecuteCommand(MCommandObject* command) override { return road.ExecuteCommand(*command); }
    std::uint32_t ThreadRun(MThread* thread) override {
        road.Serve(*thread);
        return 0;
    }
    void OnCommandCreated(void* context) override {
        if (context != nullptr)
            static_cast<IExecContext*>(context)->Begin();
    }
    void OnCommandDestroyed(void* context) override {
        if (context != nullptr)
            static_cast<IExecContext*>(context)->End();
    }

    // ICommandWork
    std::string GetRoadName() override { return "Desk"; }
    bool MayPost() const override { return mayPost; }
    bool Run(const ScriptRequest& request) override {
        Tell(std::to_string(request.id) + (request.text != nullptr ? std::string(" ") + request.text : ""));
        if (onRun)
            onRun();
        return succeeds;
    }
    void ShowStatus(DeviceStatus status) override { Tell("status " + std::to_string(static_cast<int>(status))); }
    void ShowError(const char* text) override { Tell(std::string("error '") + text + "'"); }
    void OnCommandOver() override { Tell("over"); }
    void DropAnswer(MyAsyncDeviceExecContext* answer) override { dropped.push_back(answer); }

    void Tell(const std::string& what) { told.SetValueFromString((told.Text() + what + "; ").c_str(), 0, 0); }
    void ForgetTold() { told.SetValueFromString("", 0, 0); }
    /// Executes what is queued on this thread.
    void ExecuteAll() {
        while (TakeNextCommand() == kCommandDone)
            ExecuteCurrentCommand();
    }
    bool Post(const char* function, IExecContext* context) {
        const char* texts[kArgumentCount] = {};
        return road.Post(ScriptRequest::Function(function, nullptr, texts), context);
    }
    static MyAsyncDeviceExecContext* Answer(std::uintptr_t number) {
        return reinterpret_cast<MyAsyncDeviceExecContext*>(number);
    }

    bool mayPost = true;
    bool succeeds = true;
    std::function<void()> onRun; ///< inside Run
    plain::Value told{"told"};
    std::vector<MyAsyncDeviceExecContext*> dropped;
    std::uint32_t nowMs = 1000;
    CommandRoad road{*this, *this, *this, *this, 0};
};

TEST_F(Road, KnowsWhenTheSystemGaveItNoThread) {
    CommandRoad withoutThread(*this, *this, *this, *this, SIZE_MAX); // no system has such a stack
    EXPECT_TRUE(withoutThread.HasThread()) << "what is posted before the start waits for it";
    withoutThread.Start();
    EXPECT_FALSE(withoutThread.HasThread());
    withoutThread.Stop();
    EXPECT_TRUE(withoutThread.HasThread());
    road.Start();
    EXPECT_TRUE(road.HasThread());
}

TEST_F(Road, ExecutesOnItsThreadInTheOrderOfThePosts) {
    road.Post(ScriptRequest::Load(kLoadFromFile, "a.js"), nullptr);
    road.Post(ScriptRequest::Function("F"), nullptr);
    road.Start();
    road.Post(ScriptRequest::Load(kLoadFromText, "1"), nullptr);
    EXPECT_TRUE(told.WaitFor("error ''; status 1; 0 a.js; status 0; over; "
                             "error ''; status 2; 2 F; status 0; over; "
                             "error ''; status 1; 1 1; status 0; over; "));
    EXPECT_TRUE(Eventually([this] { return road.GetStackCount() == 0; }));
}

TEST_F(Road, ShowsNeitherStatusNorErrorForACallback) {
    road.Post(ScriptRequest::Callback(Answer(7)), nullptr);
    ExecuteAll();
    EXPECT_EQ(told.Text(), "10000; over; ");
}

TEST_F(Road, ExecutesWithoutAQueueWhenItIsAskedTo) {
    EXPECT_TRUE(road.Execute(ScriptRequest::Function("F")));
    EXPECT_EQ(told.Text(), "error ''; status 2; 2 F; status 0; ");
    succeeds = false;
    EXPECT_FALSE(road.Execute(ScriptRequest::Function("F")));
    EXPECT_EQ(road.GetStackCount(), 0);
}

TEST_F(Road, TakesNothingWhileItMayNotAndKnowsNoOtherNumbers) {
    ScriptRequest unknown;
    unknown.id = 4;
    EXPECT_FALSE(road.Post(unknown, nullptr));
    EXPECT_FALSE(road.Execute(unknown));
    mayPost = false;
    EXPECT_FALSE(road.Post(ScriptRequest::Function("F"), nullptr));
    EXPECT_EQ(GetQueuedCount(), 0);
    EXPECT_EQ(road.GetStackCount(), 0);
}

TEST_F(Road, BeginsTheContextOfAFunctionWithParametersAtThePostAndEndsItWithTheCommand) {
    plain::Context context;
    plain::Context other;
    ASSERT_TRUE(Post("F", &context));
    road.Post(ScriptRequest::Function("F"), &other);
    EXPECT_EQ(context.Begun(), 1);
    EXPECT_EQ(context.Ended(), 0);
    ExecuteAll();
    EXPECT_EQ(context.Ended(), 1);
    EXPECT_EQ(other.Begun() + other.Ended(), 0);
}

TEST_F(Road, CarriesTextsOfItsOwnWithNullAsNull) {
    std::string function = "a name that is too long for its string to hold";
    std::string text = "an argument that is too long for that";
    plain::Value result("Result");
    const char* texts[kArgumentCount] = {text.c_str(), nullptr, "behind"};
    MCommandObject command(nullptr, kExecuteFunctionWithParams);
    command.AddVoidParam(nullptr, kPointerParamSize);
    ScriptRequest::Function(function.c_str(), &result, texts).AddTo(command);
    function.assign(function.size(), '#');
    text.assign(text.size(), '#');
    const ScriptRequest request = ScriptRequest::Of(command);
    EXPECT_EQ(request.id, kExecuteFunctionWithParams);
    EXPECT_STREQ(request.text, "a name that is too long for its string to hold");
    EXPECT_EQ(request.result, &result);
    EXPECT_STREQ(request.params[0], "an argument that is too long for that");
    EXPECT_EQ(request.params[1], nullptr);
    EXPECT_STREQ(request.params[2], "behind");
    EXPECT_EQ(request.answer, nullptr);
}

TEST_F(Road, LeavesAFunctionOpenThatTheScriptHasTakenAndGivesItOnce) {
    plain::Context context;
    MCommandObject* taken = nullptr;
    MCommandObject* again = nullptr;
    onRun = [&] {
        taken = road.TakeExecuting();
        again = road.TakeExecuting();
    };
    ASSERT_TRUE(Post("F", &context));
    ExecuteAll();
    ASSERT_NE(taken, nullptr);
    EXPECT_EQ(again, nullptr);
    EXPECT_EQ(context.Ended(), 0);
    EXPECT_EQ(road.GetStackCount(), 0);
    EXPECT_EQ(road.TakeExecuting(), nullptr);
    delete taken;
    EXPECT_EQ(context.Ended(), 1);
}

TEST_F(Road, LeavesAFunctionOpenThatTheScriptHasTakenAlsoWhenTheCallFails) {
    plain::Context context;
    std::unique_ptr<MCommandObject> taken;
    succeeds = false;
    onRun = [&] { taken.reset(road.TakeExecuting()); };
    ASSERT_TRUE(Post("F", &context));
    ExecuteAll();
    EXPECT_EQ(LockCurrentCommand(), nullptr) << "nothing is held";
    EXPECT_EQ(context.Ended(), 0);
}

TEST_F(Road, GivesNobodyACommandThatIsNoFunctionWithParameters) {
    MCommandObject* taken = nullptr;
    onRun = [&] { taken = road.TakeExecuting(); };
    road.Post(ScriptRequest::Function("F"), nullptr);
    ExecuteAll();
    EXPECT_EQ(taken, nullptr);
}

TEST_F(Road, RepeatsAHeldCommandOnceAndThenGivesItUpAndGoesOn) {
    plain::Context context;
    succeeds = false;
    road.Post(ScriptRequest::Load(kLoadFromFile, "gone.js"), nullptr);
    ASSERT_TRUE(Post("F", &context));
    ExecuteAll();
    ForgetTold();
    nowMs += 4999;
    road.OnTick();
    EXPECT_EQ(told.Text(), "");
    nowMs += 1;
    road.OnTick();
    EXPECT_EQ(told.Text(), "error ''; status 1; 0 gone.js; status 0; ");
    ForgetTold();
    succeeds = true;
    nowMs += 5000;
    road.OnTick();
    EXPECT_EQ(told.Text(), "error 'Command Timeout.'; status 0; error ''; status 2; 3 F; status 0; over; ");
    EXPECT_EQ(context.Ended(), 1);
    EXPECT_EQ(road.GetStackCount(), 0);
}

TEST_F(Road, LetsGoOfWhatAFullQueueDropsAtOnce) {
    plain::Context first;
    plain::Context second;
    SetMaxQueued(2);
    ASSERT_TRUE(Post("F", &first));
    road.Post(ScriptRequest::Callback(Answer(1)), nullptr);
    road.Post(ScriptRequest::Callback(Answer(2)), nullptr);
    EXPECT_EQ(first.Ended(), 0);
    ASSERT_TRUE(Post("F", &second));
    EXPECT_EQ(first.Ended(), 1);
    EXPECT_TRUE(dropped.empty());
    road.Post(ScriptRequest::Function("F"), nullptr);
    road.Post(ScriptRequest::Function("F"), nullptr);
    EXPECT_EQ(dropped, (std::vector<MyAsyncDeviceExecContext*>{Answer(1), Answer(2)}));
    EXPECT_EQ(second.Ended(), 0);
    EXPECT_EQ(road.GetStackCount(), 3);
    road.Stop();
    EXPECT_EQ(second.Ended(), 1);
}

} // namespace
