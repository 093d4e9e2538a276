#include "DeviceFixture.h"

#include <algorithm>
#include <chrono>

#include "DeviceTexts.h"
#include "MScriptMngRemote.h"
#include "ScriptWorld.h"

namespace {

class Commands : public DeviceFixture {};

using Texts = std::vector<std::string>;

TEST_F(Commands, ExecuteFunctionWithParamsGivesTheTextOfTheReturnValue) {
    GivenScript(
        "({ Join: function(a, b) { return a + '-' + b }, Sum: function(a, b) { return Number(a) + Number(b) } })");
    EXPECT_EQ(Call("Join", {"x", "y"}), "x-y");
    EXPECT_EQ(Call("Sum", {"1", "2"}), "3");
    EXPECT_EQ(Error(), "");
}

TEST_F(Commands, ArgumentsReachTheScriptAsStrings) {
    GivenScript("({ Type: function(a) { return typeof a + arguments.length } })");
    EXPECT_EQ(Call("Type", {"5"}), "string1");
}

TEST_F(Commands, AnEmptyTextIsPassedAndTheListEndsAtTheFirstNull) {
    GivenScript(
        "({ Count: function() { return arguments.length + ':' + Array.prototype.join.call(arguments, '|') } })");
    EXPECT_EQ(Call("Count", {"", "b", ""}), "3:|b|");
    auto params = plain::Params::ForFunction("Count", {"a", "b", "c"});
    params->At(3).m_givesNullText = true;
    plain::Context context;
    EXPECT_EQ(Send(3, *params, &context), KXP_OK);
    ASSERT_TRUE(context.WaitForEnd());
    EXPECT_EQ(params->At(1).Text(), "1:a");
}

TEST_F(Commands, EightArgumentsReachTheFunction) {
    GivenScript("({ All: function() { return Array.prototype.join.call(arguments, '') } })");
    EXPECT_EQ(Call("All", {"1", "2", "3", "4", "5", "6", "7", "8"}), "12345678");
}

TEST_F(Commands, AFunctionThatReturnsUndefinedLeavesTheResultAsItIs) {
    GivenScript("({ Nothing: function() {} })");
    auto params = plain::Params::ForFunction("Nothing", {});
    params->At(1).SetValueFromString("before", 0, 0);
    plain::Context context;
    ASSERT_EQ(Send(3, *params, &context), KXP_OK);
    ASSERT_TRUE(context.WaitForEnd());
    EXPECT_EQ(params->At(1).Text(), "before");
}

TEST_F(Commands, ABoundVariableCountsForReadingAndForTheResult) {
    GivenScript("({ Up: function(t) { return t.toUpperCase() } })");
    auto params = plain::Params::ForFunction("Up", {"own"});
    plain::Value in("In", KXP_STRING_DATA, "bound");
    plain::Value out("Out");
    params->At(2).SetBound(&in);
    params->At(1).SetBound(&out);
    plain::Context context;
    ASSERT_EQ(Send(3, *params, &context), KXP_OK);
    ASSERT_TRUE(context.WaitForEnd());
    EXPECT_EQ(out.Text(), "BOUND");
    EXPECT_EQ(params->At(1).Text(), "");
}

TEST_F(Commands, BeginNowAndEndWhenTheResultIsThereForCommand3Alone) {
    GivenScript("({ F: function() { return 1 } })");
    plain::Context context;
    auto params = plain::Params::ForFunction("F", {});
    ASSERT_EQ(Send(3, *params, &context), KXP_OK);
    EXPECT_EQ(context.Begun(), 1);
    ASSERT_TRUE(context.WaitForEnd());
    EXPECT_EQ(context.Ended(), 1);

    plain::Context unused;
    plain::Params function({"F"});
    ASSERT_EQ(Send(2, function, &unused), KXP_OK);
    Call("F");
    EXPECT_EQ(unused.Begun(), 0);
    EXPECT_EQ(unused.Ended(), 0);
}

TEST_F(Commands, ExecuteFunctionCallsWithoutArguments) {
    GivenScript("({ n: -1, Count: function() { this.n = arguments.length }, Get: function() { return this.n } })");
    plain::Params params({"Count"});
    EXPECT_EQ(Send(2, params), KXP_OK);
    EXPECT_EQ(Call("Get"), "0");
}

TEST_F(Commands, TheEvaluatedValueIsThisInEveryCall) {
    GivenScript("({ mark: 'mine', Get: function() { return this.mark } })");
    EXPECT_EQ(Call("Get"), "mine");
}

TEST_F(Commands, ShowStatusExecutingAndThenReady) {
    GivenScript("({ F: function() {} })");
    Call("F");
    EXPECT_EQ(variables.status.Plain().History(), (Texts{"2", "0"}));
}

TEST_F(Commands, ClearTheErrorOfTheCommandBefore) {
    GivenScript("({ Bad: function() { throw new Error('boom') }, Good: function() { return 1 } })");
    Call("Bad");
    EXPECT_EQ(Error(), "Script: boom");
    EXPECT_EQ(Call("Good"), "1");
    EXPECT_EQ(Error(), "");
}

TEST_F(Commands, AFunctionThatThrowsGivesNoResultAndEndsTheRequest) {
    GivenScript("({ Bad: function() { throw new Error('boom') }, Text: function() { throw 'plain' },"
                "   Ref: function() { return nowhere } })");
    EXPECT_EQ(Call("Bad"), "");
    EXPECT_EQ(Error(), "Script: boom");
    EXPECT_EQ(Call("Text"), "");
    EXPECT_EQ(Error(), "Script: plain");
    EXPECT_EQ(Call("Ref"), "");
    EXPECT_EQ(Error(), "Script: Can't find variable: nowhere");
}

TEST_F(Commands, AFunctionThatReturnsAnErrorReportsItsMessage) {
    GivenScript("({ Soft: function() { return new Error('soft') } })");
    EXPECT_EQ(Call("Soft"), "");
    EXPECT_EQ(Error(), "Script: soft");
}

TEST_F(Commands, AnUnknownOrHiddenFunctionGives3AndNoErrorText) {
    GivenScript("({ Bad: function() { throw new Error('kept') }, _hidden: function() {} })");
    Call("Bad");
    plain::Params unknown({"Nowhere"});
    plain::Params hidden({"_hidden"});
    EXPECT_EQ(Send(2, unknown), KXP_SCRIPT_FAILED);
    EXPECT_EQ(Send(2, hidden), KXP_SCRIPT_FAILED);
    EXPECT_EQ(Call("Nowhere"), "(code 3)");
    EXPECT_EQ(Call("_hidden"), "(code 3)");
    EXPECT_EQ(Error(), "Script: kept");
}

TEST_F(Commands, TheFailureTextsOfTheCallItselfAreThese) {
    GivenScript("({ Value: 5, Wrong: new Error('inner') })");
    EXPECT_FALSE(device->ExecuteScriptFunction(nullptr, nullptr, nullptr));
    EXPECT_EQ(Error(), DeviceText::kNoFunctionName);
    EXPECT_FALSE(device->ExecuteScriptFunction("Nowhere", nullptr, nullptr));
    EXPECT_EQ(Error(), "Nowhere function is not defined");
    EXPECT_FALSE(device->ExecuteScriptFunction("Value", nullptr, nullptr));
    EXPECT_EQ(Error(), "Value function is not defined");
    EXPECT_FALSE(device->ExecuteScriptFunction("Wrong", nullptr, nullptr));
    EXPECT_EQ(Error(), "Wrong: inner");
}

TEST_F(Commands, TooFewParametersOrNoneGive1) {
    GivenScript("({ F: function() {} })");
    for (std::int32_t id : {0, 1, 2, 3})
        EXPECT_EQ(device->ExecuteCommand(id, nullptr, nullptr), KXP_BAD_COMMAND) << id;
    plain::Params none;
    for (std::int32_t id : {0, 1, 2, 3})
        EXPECT_EQ(Send(id, none), KXP_BAD_COMMAND) << id;
    plain::Params nine({"F"}, 9);
    EXPECT_EQ(Send(3, nine), KXP_BAD_COMMAND);
    plain::Params ten({"F"}, 10);
    plain::Context context;
    EXPECT_EQ(Send(3, ten, &context), KXP_OK);
    EXPECT_TRUE(context.WaitForEnd());
}

TEST_F(Commands, TheDevicesOwnNumberIsRefusedAndPostsNothing) {
    GivenScript("");
    plain::Params params({"x"}, 10);
    EXPECT_EQ(Send(10000, params), KXP_BAD_COMMAND);
    EXPECT_TRUE(NothingIsPending());
    EXPECT_EQ(Error(), "");
}

TEST_F(Commands, AnUnknownUserCommandIsReported) {
    GivenScript("");
    plain::Params params({"x"}, 10);
    for (std::int32_t id : {4, 9999, -1}) {
        variables.error.SetValueFromString("", 0, 0);
        EXPECT_EQ(Send(id, params), KXP_BAD_COMMAND) << id;
        EXPECT_EQ(Error(), DeviceText::kUnknownCommand) << id;
    }
}

TEST_F(Commands, NothingIsTakenWhileATrackRunsAndEverythingAfterItIsSuspended) {
    GivenScript("({ F: function() { return 1 } })");
    device->OnTimerailEvent(nullptr, 1);
    EXPECT_EQ(Call("F"), "(code 1)");
    EXPECT_TRUE(NothingIsPending());
    device->OnTimerailEvent(nullptr, 3);
    EXPECT_EQ(Call("F"), "1");
}

TEST_F(Commands, RunInTheOrderOfTheirAcceptance) {
    GivenScript("({ log: '', Add: function(t) { this.log += t }, Get: function() { return this.log } })");
    std::string expected;
    for (int i = 0; i < 200; ++i) {
        const std::string text = std::to_string(i) + ",";
        expected += text;
        auto params = plain::Params::ForFunction("Add", {text});
        ASSERT_EQ(Send(3, *params), KXP_OK);
    }
    EXPECT_EQ(Call("Get"), expected);
    EXPECT_TRUE(NothingIsPending());
}

TEST_F(Commands, OfMoreThanAThousandQueuedOnesTheOldestIsDroppedAndItsRequestEnded) {
    device->GetStoredSetup().SetScript(QString(), QStringLiteral("({ F: function() { return 1 } })"));
    device->Start();
    device->SetMaxQueued(10);
    // A command that is held by the watchdog keeps all others waiting.
    plain::Params missing({"/no/such/file.js"});
    ASSERT_EQ(Send(0, missing), KXP_OK);
    ASSERT_TRUE(variables.error.WaitFor(DeviceText::kUnreadableFile));
    std::vector<std::unique_ptr<plain::Params>> params;
    std::vector<std::unique_ptr<plain::Context>> contexts;
    for (int i = 0; i < 13; ++i) {
        params.push_back(plain::Params::ForFunction("F", {}));
        contexts.push_back(std::make_unique<plain::Context>());
        ASSERT_EQ(Send(3, *params.back(), contexts.back().get()), KXP_OK);
    }
    EXPECT_EQ(contexts[0]->Ended(), 1);
    EXPECT_EQ(contexts[1]->Ended(), 1);
    EXPECT_EQ(contexts[2]->Ended(), 0);
    device->Stop();
    for (const auto& context : contexts)
        EXPECT_EQ(context->Ended(), 1);
}

TEST_F(Commands, AHeldOneIsRepeatedOnceAndThenGivenUpAndThatIsMeant) {
    GivenScript("({ F: function() { return 'next' } })");
    const auto begin = std::chrono::steady_clock::now();
    plain::Params missing({"/no/such/file.js"});
    ASSERT_EQ(Send(0, missing), KXP_OK);
    auto params = plain::Params::ForFunction("F", {});
    plain::Context context;
    ASSERT_EQ(Send(3, *params, &context), KXP_OK);
    ASSERT_TRUE(context.WaitForEnd(15000));
    const auto took = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(took, std::chrono::milliseconds(10000));
    EXPECT_EQ(params->At(1).Text(), "next");
    const std::vector<std::string> errors = variables.error.History();
    EXPECT_EQ(std::count(errors.begin(), errors.end(), DeviceText::kUnreadableFile), 2);
    EXPECT_EQ(std::count(errors.begin(), errors.end(), DeviceText::kCommandTimeOut), 1);
    EXPECT_TRUE(NothingIsPending());
}

TEST_F(Commands, APostponedResultStaysOpenUntilItIsSetAndIgnoresTheReturnValue) {
    GivenScript("({ Later: function() { return 'ignored' } })");
    int id = 0;
    bool second = true;
    OnScriptThread([&] {
        QScriptEngine* engine = device->GetEngine();
        engine->globalObject().setProperty(
            QStringLiteral("postpone"), engine->newFunction([](QScriptContext*, QScriptEngine* e) {
                return QScriptValue(e->property("remote").value<MScriptMngRemote*>()->PostponeResult());
            }));
        engine->setProperty("remote", QVariant::fromValue(device->GetRemote()));
    });
    WhenTextIsLoaded(
        "({ id: 0, again: 1, Later: function() { this.id = postpone(); this.again = postpone(); return 'ignored' },"
        "   Other: function() { return 'free' } })");
    auto params = plain::Params::ForFunction("Later", {});
    plain::Context context;
    ASSERT_EQ(Send(3, *params, &context), KXP_OK);
    EXPECT_EQ(Call("Other"), "free");
    EXPECT_EQ(context.Ended(), 0);
    EXPECT_EQ(params->At(1).Text(), "");
    OnScriptThread([&] {
        const QScriptValue global = device->GetWorld().GetSet().global;
        id = global.property(QStringLiteral("id")).toInt32();
        second = global.property(QStringLiteral("again")).toInt32() != 0;
        device->GetRemote()->SetResult(0, QStringLiteral("nobody"));
        device->GetRemote()->SetResult(id + 1000, QStringLiteral("nobody"));
        device->GetRemote()->SetResult(id, QStringLiteral("late"));
        device->GetRemote()->SetResult(id, QStringLiteral("twice"));
    });
    EXPECT_GT(id, 0);
    EXPECT_FALSE(second);
    ASSERT_TRUE(context.WaitForEnd());
    EXPECT_EQ(context.Ended(), 1);
    EXPECT_EQ(params->At(1).Text(), "late");
}

} // namespace
