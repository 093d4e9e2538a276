#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <QScriptEngine>

#include "DeviceFixture.h"
#include "FakeRemotes.h"
#include "GivenReferences.h"
#include "MScriptMngRemote.h"

namespace {

/// What a script asks of the show while a device runs it, against a host whose answers a test gives by hand.
class ShowCalls : public DeviceFixture {
protected:
    void SetUp() override {
        host.offerRemoteManager2 = true;
        host.remote2 = &remote;
        DeviceFixture::SetUp();
        remote.code = KXP_PENDING;
        remote.onCall = [this](IExecContext2* context) {
            if (answer)
                answer(context);
        };
    }
    void TearDown() override {
        for (std::thread& thread : threads)
            thread.join();
        DeviceFixture::TearDown();
    }
    /// Runs work on a thread of the host.
    void OnAHostThread(std::function<void()> work) { threads.emplace_back(std::move(work)); }
    /// Calls a function again and again until it gives the text.
    testing::AssertionResult Becomes(const std::string& function, const std::string& text) {
        std::string got;
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(kDeadlineMs);
        while ((got = Call(function)) != text)
            if (std::chrono::steady_clock::now() > end)
                return testing::AssertionFailure() << function << " gives " << got << ", not " << text;
        return testing::AssertionSuccess();
    }

    FakeRemote2 remote;
    std::function<void(IExecContext2*)> answer; ///< what the host does with a request, on the script thread
    std::vector<std::thread> threads;
};

TEST_F(ShowCalls, EachLoadRegistersTheGrantedGroupAnewWhenTheSetupSaysSo) {
    remote.code = KXP_OK;
    const std::vector<std::string> anew = {"UnregisterGroup|-", "SetHandler", "RegisterGroup|GrantedRootGroup|"};
    GivenScript("({})");
    EXPECT_EQ(remote.calls, anew);
    remote.calls.clear();
    WhenTextIsLoaded("({ F: function() {} })");
    EXPECT_EQ(remote.calls, anew);
    remote.calls.clear();
    device->GetStoredSetup().SetRegisterAllUserGroups(false);
    WhenTextIsLoaded("({})");
    EXPECT_EQ(remote.calls, std::vector<std::string>{"UnregisterGroup|-"});
}

TEST_F(ShowCalls, AValueThatChangesInsideAFunctionReachesTheScriptBehindIt) {
    GivenScript("({ seen: 'nothing', inside: false, Go: function() { var me = this;"
                "     QCalverin.OnVariableChange(function() { me.seen = me.inside ? 'inside' : 'behind' }) },"
                "   Ask: function() { this.inside = true; QCalverin.Perform('O', 'A'); var end = Date.now() + 60;"
                "     while (Date.now() < end) {} this.inside = false; return this.seen },"
                "   Get: function() { return this.seen } })");
    remote.code = KXP_OK;
    Call("Go");
    answer = [this](IExecContext2*) { device->GetRemote()->OnPropertyChange("v", "Value", "1", 0, 0); };
    EXPECT_EQ(Call("Ask"), "nothing");
    EXPECT_TRUE(Becomes("Get", "behind"));
}

const char* const kAsync =
    "({ got: [], Ask: function() { var me = this;"
    "     return QCalverin.PerformAsync(function() { me.got.push(arguments.length + ':' + arguments[0]) }, 'O', 'A') },"
    "   Get: function() { return this.got.join(';') } })";

TEST_F(ShowCalls, AnAsynchronousAnswerBeforeTheHostReturnsComesAfterTheFunction) {
    GivenScript(kAsync);
    answer = [](IExecContext2* context) {
        context->SetResultText("early");
        context->End();
    };
    EXPECT_EQ(Call("Ask"), "21");
    EXPECT_TRUE(Becomes("Get", "1:early"));
}

TEST_F(ShowCalls, AnAsynchronousAnswerOnAnotherThreadWhileTheFunctionRunsComesAfterIt) {
    GivenScript("({ got: [], Ask: function() { var me = this, seen = 0;"
                "     QCalverin.PerformAsync(function(text) { me.got.push(text) }, 'O', 'A');"
                "     var end = Date.now() + 60; while (Date.now() < end) seen += this.got.length; return seen },"
                "   Get: function() { return this.got.join(';') } })");
    answer = [this](IExecContext2* context) {
        OnAHostThread([context] {
            context->SetResultText("meanwhile");
            context->End();
        });
    };
    EXPECT_EQ(Call("Ask"), "0");
    EXPECT_TRUE(Becomes("Get", "meanwhile"));
}

TEST_F(ShowCalls, AnAsynchronousAnswerLongAfterTheFunctionReachesItsOwnRequest) {
    GivenScript("({ got: [], Ask: function(tag) { var me = this;"
                "     QCalverin.PerformAsync(function(text) { me.got.push(tag + '=' + text) }, 'O', tag) },"
                "   Get: function() { return this.got.join(';') } })");
    std::vector<IExecContext2*> asked;
    answer = [&](IExecContext2* context) { asked.push_back(context); };
    for (const char* tag : {"a", "b", "c"})
        Call("Ask", {tag});
    ASSERT_EQ(asked.size(), 3u);
    OnAHostThread([&] {
        for (const std::size_t i : {2u, 0u, 1u}) {
            asked[i]->SetResultText(std::to_string(i).c_str());
            asked[i]->End();
        }
    });
    EXPECT_TRUE(Becomes("Get", "c=2;a=0;b=1"));
}

TEST_F(ShowCalls, AnAsynchronousAnswerGivenTwiceCallsTheFunctionOnce) {
    GivenScript(kAsync);
    IExecContext2* asked = nullptr;
    answer = [&](IExecContext2* context) { asked = context; };
    Call("Ask");
    ASSERT_NE(asked, nullptr);
    asked->SetResultText("once");
    asked->End();
    EXPECT_TRUE(Becomes("Get", "1:once"));
    asked->End(); // gives up the host's own reference
    EXPECT_EQ(Call("Get"), "1:once");
    EXPECT_EQ(device->GetRemote()->GetAsyncContexts()->Count(), 0u);
}

TEST_F(ShowCalls, AsynchronousAnswersOfYearsDoNotPileUpWhenTheHostNeverReleasesThem) {
    GivenScript("({ n: 0, Ask: function() { var me = this;"
                "     for (var i = 0; i < 500; ++i) QCalverin.PerformAsync(function() { ++me.n }, 'O', 'A') },"
                "   Get: function() { return this.n } })");
    answer = [](IExecContext2* context) { context->End(); };
    for (int asked = 500; asked <= 3000; asked += 500) {
        Call("Ask");
        EXPECT_TRUE(Becomes("Get", std::to_string(asked)));
    }
    EXPECT_EQ(device->GetRemote()->GetAsyncContexts()->Count(), 0u);
    EXPECT_LE(GivenReferences::Instance().Count(), GivenReferences::kMost);
}

TEST_F(ShowCalls, AsynchronousAnswersOfYearsLeaveNothingWhenTheHostReleasesThem) {
    GivenScript(kAsync);
    IExecContext2* asked = nullptr;
    answer = [&](IExecContext2* context) { asked = context; };
    for (int i = 0; i < 50; ++i) {
        Call("Ask");
        asked->End();
        asked->Release();
    }
    Call("Get");
    EXPECT_EQ(device->GetRemote()->GetAsyncContexts()->Count(), 0u);
}

TEST_F(ShowCalls, AnAsynchronousFailureWithoutTextCallsTheFunctionWithoutArgument) {
    GivenScript(kAsync);
    answer = [](IExecContext2* context) {
        context->SetErrorCode(77);
        context->End();
    };
    Call("Ask");
    EXPECT_TRUE(Becomes("Get", "0:undefined"));
}

TEST_F(ShowCalls, AnAsynchronousRequestThatTheHostRefusesGivesItsCodeAndNoCall) {
    GivenScript(kAsync);
    remote.code = 77;
    EXPECT_EQ(Call("Ask"), "77");
    EXPECT_EQ(Call("Get"), "");
}

TEST_F(ShowCalls, AnAsynchronousAnswerAfterStopReachesNobody) {
    GivenScript(kAsync);
    IExecContext2* asked = nullptr;
    answer = [&](IExecContext2* context) { asked = context; };
    Call("Ask");
    ASSERT_NE(asked, nullptr);
    asked->AddRef(); // a host that keeps what it still needs
    device->Stop();
    asked->SetResultText("too late");
    asked->End();
    asked->Release();
    device->Start();
    EXPECT_EQ(Call("Get"), "");
}

/// A host that answers late: what it does with the references, and when.
struct LateHost {
    const char* name;
    bool holdsItsOwn;
    bool drops;
    bool stops;
    bool startsAgain;
    bool answersBeforeRelease;
};
constexpr LateHost kLateHosts[] = {
    {"its own, stop, answer, release", true, true, true, false, true},
    {"its own, stop, release, answer", true, true, true, false, false},
    {"its own, release, answer", true, true, false, false, false},
    {"its own, stop, start, answer, release", true, true, true, true, true},
    {"its own, stop, start, release, answer", true, true, true, true, false},
    {"the given one, stop, answer, release", false, true, true, false, true},
    {"the given one, stop, release, answer", false, true, true, false, false},
    {"the given one, release, answer", false, true, false, false, false},
    {"the given one, stop, start, release, answer", false, true, true, true, false},
    {"none, stop, release, answer", false, false, true, false, false},
    {"none, stop, start, answer, release", false, false, true, true, true},
};

TEST_F(ShowCalls, ALateAsynchronousAnswerTouchesLivingMemoryInWhateverOrderItComes) {
    for (const LateHost& late : kLateHosts) {
        SCOPED_TRACE(late.name);
        GivenScript(kAsync);
        IExecContext2* asked = nullptr;
        const auto gone = std::make_shared<std::atomic<bool>>(false);
        answer = [&](IExecContext2* context) {
            asked = context;
            if (late.holdsItsOwn)
                context->AddRef();
            QObject::connect(static_cast<MyAsyncDeviceExecContext*>(context), &QObject::destroyed,
                             [gone] { *gone = true; });
        };
        ASSERT_EQ(Call("Ask"), "21");
        answer = nullptr;
        ASSERT_NE(asked, nullptr);
        const auto answerLate = [&] {
            ASSERT_FALSE(*gone);
            asked->SetResultText("late");
            asked->End();
            if (!late.drops)
                return;
            ASSERT_FALSE(*gone);
            asked->Release();
        };
        if (late.stops)
            device->Stop();
        if (late.startsAgain)
            device->Start();
        if (late.answersBeforeRelease)
            answerLate();
        device->Release();
        device = nullptr;
        if (!late.answersBeforeRelease)
            answerLate();
        MakeDevice();
    }
}

TEST_F(ShowCalls, AnAnswerThatWillNotBeDeliveredGoesWithItsFunction) {
    GivenScript("({ got: [], Ask: function() { var me = this, big = new Array(100).join('x');"
                "     QCalverin.PerformAsync(function(text) { me.got.push(text + big) }, 'O', 'A') },"
                "   Get: function() { return this.got.join(';') } })");
    IExecContext2* asked = nullptr;
    const auto gone = std::make_shared<std::atomic<bool>>(false);
    answer = [&](IExecContext2* context) {
        asked = context;
        QObject::connect(static_cast<MyAsyncDeviceExecContext*>(context), &QObject::destroyed,
                         [gone] { *gone = true; });
    };
    Call("Ask");
    auto* context = static_cast<MyAsyncDeviceExecContext*>(asked);
    device->DropAsyncResult(context);
    EXPECT_EQ(device->GetRemote()->GetAsyncContexts()->Count(), 0u);
    device->DropAsyncResult(context);
    asked->End();
    asked->Release();
    EXPECT_EQ(Call("Get"), "");
    EXPECT_TRUE(*gone);
}

TEST_F(ShowCalls, StopReturnsWhileAScriptMakesOneWaitingRequestAfterTheOther) {
    plain::Value asked("asked");
    std::mutex lock;
    std::vector<IExecContext2*> open;
    GivenScript("({ Ask: function() { for (var i = 0; i < 5; ++i) QCalverin.Perform('O', 'A') } })");
    answer = [&](IExecContext2* context) {
        context->AddRef();
        context->Begin();
        const std::lock_guard<std::mutex> guard(lock);
        open.push_back(context);
        asked.SetValueFromString("yes", 0, 0);
    };
    auto params = plain::Params::ForFunction("Ask", {});
    ASSERT_EQ(Send(3, *params), KXP_OK);
    ASSERT_TRUE(asked.WaitFor("yes"));
    std::atomic<bool> stopped{false};
    std::thread stopper([&] {
        device->Stop();
        stopped = true;
    });
    EXPECT_TRUE(Eventually([&] { return stopped.load(); }));
    const auto endAll = [&] {
        const std::lock_guard<std::mutex> guard(lock);
        for (IExecContext2* context : open)
            context->End();
    };
    while (!stopped)
        endAll();
    stopper.join();
    endAll();
    for (IExecContext2* context : open)
        context->Release();
}

TEST_F(ShowCalls, AStopFunctionMayWaitForTheHostAndTheNextRunToo) {
    GivenScript("({ _mStop: function() { said = QCalverin.Perform('O', 'A') },"
                "   Said: function() { return said + '/' + QCalverin.Perform('O', 'B') } })");
    OnScriptThread(
        [&] { device->GetEngine()->globalObject().setProperty(QStringLiteral("said"), QStringLiteral("nothing")); });
    answer = [](IExecContext2* context) {
        context->Begin();
        context->AddRef();
        std::thread([context] {
            context->SetResultText("done");
            context->End();
            context->Release();
        }).detach();
    };
    device->Stop();
    OnScriptThread([] {}); // behind the stop function, which Stop need not have waited for
    device->Start();
    EXPECT_EQ(Call("Said"), "done/done");
}

TEST_F(ShowCalls, AWaitEndsWhenTheHostEndsTheRequestOnAThreadOfItsOwn) {
    GivenScript("({ Ask: function() { return QCalverin.Perform('O', 'A') + '/' + QCalverin.StartTask('T') } })");
    answer = [this](IExecContext2* context) {
        context->Begin();
        OnAHostThread([context] {
            context->SetResultText("done");
            context->End();
        });
    };
    EXPECT_EQ(Call("Ask"), "done/0");
}

TEST_F(ShowCalls, AWaitThatTheHostNeverEndsIsEndedByStopAndTheCommandToo) {
    plain::Value asked("asked");
    GivenScript("({ Ask: function() { return '[' + QCalverin.Perform('O', 'A') + ']' } })");
    answer = [&](IExecContext2* context) {
        context->Begin();
        asked.SetValueFromString("yes", 0, 0);
    };
    auto params = plain::Params::ForFunction("Ask", {});
    plain::Context context;
    ASSERT_EQ(Send(3, *params, &context), KXP_OK);
    ASSERT_TRUE(asked.WaitFor("yes"));
    EXPECT_EQ(context.Ended(), 0);
    device->Stop();
    EXPECT_TRUE(context.WaitForEnd());
}

TEST_F(ShowCalls, TimersOfQCalverinRunOnceOrUntilTheyAreCleared) {
    GivenScript("({ log: [], id: 0, n: 0,"
                "   Go: function() { var me = this;"
                "     QCalverin.SetTimeout(function() { me.log.push('once:' + arguments.length) }, 1);"
                "     var gone = QCalverin.SetTimeout(function() { me.log.push('never') }, 1);"
                "     QCalverin.ClearTimeout(gone);"
                "     this.id = QCalverin.SetInterval(function() {"
                "       if (++me.n == 3) { QCalverin.ClearInterval(me.id); me.log.push('thrice') } }, 2);"
                "     return [QCalverin.SetInterval(5, 1000), QCalverin.SetTimeout('x', 1)].join() },"
                "   Get: function() { return this.log.sort().join(';') } })");
    EXPECT_EQ(Call("Go"), "-1,-1");
    EXPECT_TRUE(Becomes("Get", "once:0;thrice"));
}

TEST_F(ShowCalls, ChangesFromAHostThreadReachTheLastFunctionInTheirOrder) {
    GivenScript("({ got: [], Go: function() { var me = this;"
                "     var codes = [QCalverin.OnVariableChange(function() { me.got.push('first') }),"
                "                  QCalverin.OnVariableChange(function(name, value) { me.got.push(name + value) }),"
                "                  QCalverin.OnVariableChange(7)];"
                "     return codes.join() },"
                "   Count: function() { return this.got.length },"
                "   Ordered: function() { return this.got.every(function(t, i) { return t == 'v' + i }) } })");
    IManagerRemoteHandler* handler = device->GetRemote();
    handler->OnPropertyChange("early", "p", "dropped", 0, 0);
    EXPECT_EQ(Call("Go"), "0,0,19");
    OnAHostThread([handler] {
        for (int i = 0; i < 2000; ++i)
            handler->OnPropertyChange("v", "Value", std::to_string(i).c_str(), 1, 0);
    });
    EXPECT_TRUE(Becomes("Count", "2000"));
    EXPECT_EQ(Call("Ordered"), "true");
}

TEST_F(ShowCalls, AFunctionMayAskForChangesOfItsGroupWhileChangesCome) {
    GivenScript(
        "({ got: [], Go: function() { var me = this; QCalverin.RegisterGroup('G', true);"
        "     return QCalverin.OnVariableChange(function(name, value) {"
        "       me.got.push(value); QCalverin.UnregisterGroup('G'); QCalverin.SetProperty(name, 'P', value) }) },"
        "   Get: function() { return this.got.join() } })");
    remote.code = KXP_OK;
    EXPECT_EQ(Call("Go"), "0");
    ASSERT_EQ(remote.handler, device->GetRemote());
    OnAHostThread([this] {
        remote.handler->OnPropertyChange("a", "Value", "1", 0, 0);
        remote.handler->OnPropertyChange("b", "Value", "2", 0, 0);
    });
    EXPECT_TRUE(Becomes("Get", "1,2"));
    EXPECT_EQ(remote.calls.back(), "SetProperty|b|P|2");
}

TEST_F(ShowCalls, AnAnswerPostponedInAScriptIsGivenByItsTimerAndTheReturnValueIsNot) {
    GivenScript(
        "({ ids: [], Later: function() { var id = QCalverin.PostponeResult(); this.ids = [id > 0, "
        "     QCalverin.PostponeResult()];"
        "     QCalverin.SetTimeout(function() { QCalverin.SetResult(id, 'late'); QCalverin.SetResult(id, 'twice') },"
        "                          20); return 'ignored' },"
        "   Ids: function() { return this.ids.join() } })");
    EXPECT_EQ(Call("Later"), "late");
    EXPECT_EQ(Call("Ids"), "true,0");
}

TEST_F(ShowCalls, AnAnswerPostponedIsGivenByTheAnswerOfAnotherObject) {
    GivenScript(
        "({ Relay: function() { var id = QCalverin.PostponeResult();"
        "     QCalverin.PerformAsync(function(text) { QCalverin.SetResult(id, 'it said ' + text) }, 'O', 'A') } })");
    answer = [this](IExecContext2* context) {
        OnAHostThread([context] {
            context->SetResultText("hello");
            context->End();
        });
    };
    EXPECT_EQ(Call("Relay"), "it said hello");
}

TEST_F(ShowCalls, AnAnswerThatIsNeverGivenLeavesTheRequestOpenUntilStop) {
    GivenScript("({ Later: function() { QCalverin.PostponeResult() }, Other: function() { return 'free' } })");
    auto params = plain::Params::ForFunction("Later", {});
    plain::Context context;
    ASSERT_EQ(Send(3, *params, &context), KXP_OK);
    EXPECT_EQ(Call("Other"), "free");
    EXPECT_EQ(context.Ended(), 0);
    device->Stop();
    EXPECT_TRUE(context.WaitForEnd());
    EXPECT_EQ(params->At(1).Text(), "");
}

} // namespace
