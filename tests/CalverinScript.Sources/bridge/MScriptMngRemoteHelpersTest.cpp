#include <cstddef>
#include <memory>

#include <QMetaMethod>

#include "GivenReferences.h"

#include "InAScript.h"

namespace {

TEST_F(InAScript, EveryMethodButThoseThatNeedArgumentsRunsWithNone) {
    const std::pair<const char*, const char*> rows[] = {
        {"OpenUserScreen", "0"},
        {"CloseUserScreen", "0"},
        {"GotoPage", "0"},
        {"StartTask", "0"},
        {"PauseTask", "0"},
        {"StopTask", "0"},
        {"GotoLabel", "0"},
        {"GotoLine", "0"},
        {"GotoTime", "0"},
        {"LoadShow", "0"},
        {"RegisterGroup", "0"},
        {"UnregisterGroup", "0"},
        {"GetObjectList", ""},
        {"GetObject", ""},
        {"SetProperty", "0"},
        {"SetPropertyAsInt", "0"},
        {"GetProperty", ""},
        {"GetPropertyAsInt", "0"},
        {"Perform", ""},
        {"SetValue", "48"},
        {"SetValueAsInteger", "48"},
        {"GetValueAsInteger", "0"},
        {"GetValueAsReal", "0"},
        {"GetValueAsString", ""},
        {"TraceMessage", "undefined"},
        {"DateStringToDay", "1"},
        {"DateStringToMonth", "1"},
        {"DateStringToYear", "1900"},
        {"TimeStringToHours", "0"},
        {"TimeStringToMinutes", "0"},
        {"TimeStringToSeconds", "0"},
        {"TimeStringToFrames", "0"},
        {"PostponeResult", "0"},
        {"DateStringToDayOfWeekAsNumber", "2"},
    };
    for (const auto& [method, result] : rows)
        EXPECT_EQ(Run(std::string("QCalverin.") + method + "()"), result) << method;
    for (const char* method : {"OnVariableChange", "PerformAsync", "SetInterval", "ClearInterval", "SetTimeout",
                               "ClearTimeout", "EnumStringToIndex", "GetResource", "SetResult"})
        EXPECT_EQ(Run(std::string("QCalverin.") + method + "()").find("SyntaxError: too few arguments"), 0u) << method;
}

TEST_F(InAScript, ArgumentsBeyondTheLongestListAreDropped) {
    EXPECT_EQ(Run("QCalverin.StartTask('A', 1, 2, 3)"), "0");
    EXPECT_EQ(newer.calls.back(), "StartTask|A");
    EXPECT_EQ(Run("QCalverin.GotoLabel('A', 'B', 'C')"), "0");
    EXPECT_EQ(newer.calls.back(), "GotoLabel|A|B");
}

TEST_F(InAScript, TextsBeyondLatinOneBecomeQuestionMarks) {
    EXPECT_EQ(Run("QCalverin.StartTask('\\u00e9\\u20ac')"), "0");
    EXPECT_EQ(newer.calls.back(), "StartTask|\xe9?");
}

TEST_F(InAScript, ANumberGivenAsAnIntegerValueTravelsAsText) {
    FakeVariable& v = host.variables["v"];
    EXPECT_EQ(Run("QCalverin.SetValueAsInteger('v', 5)"), "0");
    EXPECT_EQ(v.written, "int|5|0|0");
    EXPECT_EQ(Run("QCalverin.SetValueAsInteger('v', 5.5)"), "0");
    EXPECT_EQ(v.written, "int|0|0|0");
}

TEST_F(InAScript, ItemsAreFoundInArraysOnly) {
    EXPECT_EQ(Run("QCalverin.EnumStringToIndex(['a', 'b', 'b'], 'b')"), "1");
    EXPECT_EQ(Run("QCalverin.EnumStringToIndex(['a', 'b'], 'B')"), "-1");
    EXPECT_EQ(Run("QCalverin.EnumStringToIndex([7, ''], '7')"), "0");
    EXPECT_EQ(Run("QCalverin.EnumStringToIndex([7, ''])"), "1");
    for (const char* items : {"'a'", "null", "undefined", "5", "{0: 'a', length: 1}", "[]"})
        EXPECT_EQ(Run(std::string("QCalverin.EnumStringToIndex(") + items + ", 'a')"), "-1") << items;
}

TEST_F(InAScript, DatesAndTimesAreTakenApart) {
    EXPECT_EQ(Run("QCalverin.DateStringToDay('31/02/2012')"), "1");
    EXPECT_EQ(Run("QCalverin.DateStringToYear('31/02/2012')"), "1900");
    EXPECT_EQ(Run("QCalverin.DateStringToDay('29/02/2012')"), "29");
    EXPECT_EQ(Run("QCalverin.DateStringToMonth('29/02/2012')"), "2");
    for (int day = 1; day <= 7; ++day) // 1 January 2012 was a Sunday
        EXPECT_EQ(Run("QCalverin.DateStringToDayOfWeekAsNumber('0" + std::to_string(day) + "/01/2012')"),
                  std::to_string(day));
    EXPECT_EQ(Run("QCalverin.TimeStringToFrames('01:02:03/04', 1)"), "4");
    EXPECT_EQ(Run("QCalverin.TimeStringToHours('01:02:03/04')"), "1");
    EXPECT_EQ(Run("QCalverin.TimeStringToMinutes('01:02:03/04')"), "2");
    EXPECT_EQ(Run("QCalverin.TimeStringToSeconds('01:02:03/04')"), "3");
    EXPECT_EQ(Run("QCalverin.TimeStringToHours('no time')"), "0");
}

TEST_F(InAScript, PerformAsyncGivesNineteenForWhatTheDeviceRefuses) {
    EXPECT_EQ(Run("QCalverin.PerformAsync(5, 'O', 'A')"), "19");
    EXPECT_TRUE(newer.calls.empty());
}

TEST_F(InAScript, PerformAsyncPassesTheCodeAndKeepsTwoReferences) {
    for (const char* code : {"0", "21"}) {
        device.madeContext = new MyAsyncDeviceExecContext(&remote, remote.GetAsyncContexts());
        newer.code = static_cast<KXPCode>(std::stoul(code));
        EXPECT_EQ(Run("QCalverin.PerformAsync(function() {}, 'O', 'A', 'List', 'a=1')"), code);
        EXPECT_EQ(newer.calls.back(),
                  "Perform|O|A|<parameters>\n\t<parameter name=\"a\" value=\"1\" />\n</parameters>\n");
        device.madeContext->Release();
        EXPECT_EQ(remote.GetAsyncContexts()->Count(), 1u);
        device.madeContext->Release();
        EXPECT_EQ(remote.GetAsyncContexts()->Count(), 0u);
        EXPECT_TRUE(device.forgotten.empty());
    }
    device.ending = true;
    newer.calls.clear();
    EXPECT_EQ(Run("QCalverin.PerformAsync(function() {}, 'O', 'A')"), "19");
    EXPECT_TRUE(newer.calls.empty());
}

TEST_F(InAScript, PerformAsyncForgetsWhatTheHostRefusesAndLeavesTheHostItsReference) {
    device.madeContext = new MyAsyncDeviceExecContext(&remote, remote.GetAsyncContexts());
    newer.code = 77;
    EXPECT_EQ(Run("QCalverin.PerformAsync(function() {}, 'O', 'A')"), "77");
    EXPECT_EQ(device.forgotten, std::vector<MyAsyncDeviceExecContext*>{device.madeContext});
    EXPECT_EQ(remote.GetAsyncContexts()->Count(), 0u);
    bool gone = false;
    QObject::connect(device.madeContext, &QObject::destroyed, [&] { gone = true; });
    device.madeContext->End(); // of a host that ends even what it has refused
    EXPECT_TRUE(device.asyncResults.empty());
    EXPECT_TRUE(gone);
}

TEST_F(InAScript, PerformAsyncDeliversWhatTheHostHasEndedBeforeItRefused) {
    device.madeContext = new MyAsyncDeviceExecContext(&remote, remote.GetAsyncContexts());
    newer.code = 77;
    newer.onCall = [](IExecContext2* context) { context->End(); };
    EXPECT_EQ(Run("QCalverin.PerformAsync(function() {}, 'O', 'A')"), "77");
    EXPECT_TRUE(device.forgotten.empty());
    EXPECT_EQ(device.asyncResults, std::vector<MyAsyncDeviceExecContext*>{device.madeContext});
    device.madeContext->Release(); // the device's
    device.madeContext->Release(); // the host's
}

TEST_F(InAScript, PerformAsyncDoesNotCollectWhatTheHostRefuses) {
    newer.code = 77;
    const auto gone = std::make_shared<std::size_t>(0);
    constexpr std::size_t kAsked = 3000;
    for (std::size_t asked = 0; asked < kAsked; ++asked) {
        device.madeContext = new MyAsyncDeviceExecContext(&remote, remote.GetAsyncContexts());
        QObject::connect(device.madeContext, &QObject::destroyed, [gone] { ++*gone; });
        remote.PerformAsync(QScriptValue());
    }
    EXPECT_EQ(remote.GetAsyncContexts()->Count(), 0u);
    EXPECT_GE(*gone, kAsked - GivenReferences::kMost);
}

TEST_F(InAScript, PerformAsyncGivesSixteenOnTheOlderLink) {
    EXPECT_EQ(onOlder.PerformAsync(QScriptValue()), 16u);
    EXPECT_TRUE(older.calls.empty());
}

TEST_F(InAScript, TimersAreTheDevices) {
    EXPECT_EQ(Run("QCalverin.SetInterval(function() {}, 20)"), "1");
    EXPECT_EQ(Run("QCalverin.SetTimeout(function() {}, 30)"), "2");
    Run("QCalverin.ClearInterval(1); QCalverin.ClearTimeout(9)");
    EXPECT_EQ(device.timerCalls,
              (std::vector<std::string>{"SetInterval 20", "SetTimeout 30", "ClearInterval 1", "ClearTimeout 9"}));
    MScriptMngRemote alone(nullptr, nullptr, nullptr, nullptr, &engine);
    EXPECT_EQ(alone.SetInterval(QScriptValue(), 20), -1);
    EXPECT_EQ(alone.SetTimeout(QScriptValue(), 20), -1);
    alone.ClearInterval(1);
    alone.ClearTimeout(1);
}

/// Every entry of every method, each argument being this.
std::vector<std::string> CallsWith(const std::string& argument, int further = 0) {
    std::vector<std::string> calls;
    const QMetaObject& meta = MScriptMngRemote::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        std::string list;
        for (int n = 0; n < meta.method(i).parameterCount() + further; ++n)
            list += (n > 0 ? "," : "") + argument;
        calls.push_back("QCalverin." + meta.method(i).name().toStdString() + "(" + list + ")");
    }
    return calls;
}

class OddArguments : public InAScript, public testing::WithParamInterface<const char*> {
protected:
    OddArguments() { engine.globalObject().setProperty(QStringLiteral("longText"), QString(100000, QLatin1Char('x'))); }
    void ThenNothingThrows(const std::vector<std::string>& calls) {
        for (const std::string& call : calls) {
            EXPECT_FALSE(engine.evaluate(QString::fromStdString(call)).isError()) << call;
            EXPECT_FALSE(engine.hasUncaughtException()) << call;
            engine.clearExceptions();
        }
    }
};

TEST_P(OddArguments, NeverThrowHoweverManyTheyAre) {
    for (MScriptMngRemote* bridge : {&remote, &onOlder, &onNone}) {
        Offer(*bridge);
        ThenNothingThrows(CallsWith(GetParam()));
        ThenNothingThrows(CallsWith(GetParam(), 1));
        ThenNothingThrows(CallsWith(GetParam(), 20));
    }
}

// Wrong types, and texts: beyond Latin-1, beyond 16 bits, half a character, with a NUL, long.
INSTANTIATE_TEST_SUITE_P(OfEachKind, OddArguments,
                         testing::Values("undefined", "null", "true", "-1.5", "NaN", "1e300", "'x'", "{}", "[1]",
                                         "new Date(0)", "QCalverin", "function () {}", "/x/", "new Error('x')",
                                         "'\\u20ac\\u0142'", "'\\ud83d\\ude00'", "'\\ud83d'", "'a\\0b'", "longText"));

} // namespace
