#include <algorithm>

#include <QScriptEngine>

#include "Log.h"
#include "LoggedDevice.h"
#include "MScriptMngRemote.h"

namespace {

using LoggedLines = std::vector<LogLine>;

class LogLines : public LoggedDevice {};

TEST_F(LogLines, OfALoadFromAFile) {
    GivenScript("");
    const std::string path = WriteFile("a.js", "({})");
    GivenAnEmptyLog();
    WhenFileIsLoaded(path);
    EXPECT_EQ(LogOf(3),
              (LoggedLines{{7, "kxpCalverinScript [Desk] LoadScriptFromFile [post]: " + path + " - Stack: 0"},
                           {7, "kxpCalverinScript [Desk] LoadScriptFromFile [execute]: " + path + " - Stack: 1"},
                           {7, "kxpCalverinScript [Desk] LoadScriptFromFile [executed]: " + path}}));
}

TEST_F(LogLines, OfALoadFromAText) {
    GivenScript("");
    GivenAnEmptyLog();
    WhenTextIsLoaded("({ a: '100%s %n' })");
    EXPECT_EQ(LogOf(3),
              (LoggedLines{{7, "kxpCalverinScript [Desk] LoadScriptFromText [post]: ({ a: '100%s %n' }) - Stack: 0"},
                           {7, "kxpCalverinScript [Desk] LoadScriptFromText [execute]: ({ a: '100%s %n' }) - Stack: 1"},
                           {7, "kxpCalverinScript [Desk] LoadScriptFromText [executed]: ({ a: '100%s %n' })"}}));
}

TEST_F(LogLines, OfAFunction) {
    GivenScript("({ F: function() {} })");
    GivenAnEmptyLog();
    plain::Params params({"F"});
    ASSERT_EQ(Send(2, params), KXP_OK);
    EXPECT_EQ(LogOf(3), (LoggedLines{{7, "kxpCalverinScript [Desk] ExecuteScriptFunction [post]: F - Stack: 0"},
                                     {7, "kxpCalverinScript [Desk] ExecuteScriptFunction [execute]: F - Stack: 1"},
                                     {7, "kxpCalverinScript [Desk] ExecuteScriptFunction [executed]: F"}}));
}

TEST_F(LogLines, OfAFunctionWithParamsNameAllEightAndShowNullTextsAsEmpty) {
    GivenScript("({ F: function() {} })");
    GivenAnEmptyLog();
    Call("F", {"a", "", "c d", "4", "5"});
    const std::string texts = "F, a,,c d,4,5,,,";
    EXPECT_EQ(LogOf(3),
              (LoggedLines{
                  {7, "kxpCalverinScript [Desk] ExecuteScriptFunctionWithParams [post]: " + texts + " - Stack: 0"},
                  {7, "kxpCalverinScript [Desk] ExecuteScriptFunctionWithParams [execute]: " + texts + " - Stack: 1"},
                  {7, "kxpCalverinScript [Desk] ExecuteScriptFunctionWithParams [executed]: " + texts}}));
}

TEST_F(LogLines, TellOfADelayThatStartsNothing) {
    GivenScript("");
    GivenAnEmptyLog();
    OnScriptThread([&] {
        const QScriptValue function = device->GetEngine()->evaluate(QStringLiteral("(function() {})"));
        EXPECT_EQ(device->SlotSetTimeout(function, -5), 0);
        EXPECT_EQ(device->SlotSetInterval(QScriptValue(7), -5), -1);
    });
    EXPECT_EQ(LogOf(1), (LoggedLines{{4, "kxpCalverinScript [Desk] A timer with a delay of -5 ms starts nothing."}}));
}

TEST_F(LogLines, TellOfAResultThatTheHostGetsOnlyInPart) {
    GivenScript("({ Euro: function () { return '5 \\u20ac'; }, Nul: function () { return 'a\\u0000b'; },"
                "   Later: function () { QCalverin.SetResult(QCalverin.PostponeResult(), '\\u20ac'); },"
                "   Whole: function () { return '\\u00e9'; } })");
    const LogLine told{
        4, "kxpCalverinScript [Desk] The host gets \"?\" for each character of a result beyond Latin-1, and "
           "nothing from a NUL on."};
    const std::pair<const char*, const char*> results[] = {{"Euro", "5 ?"}, {"Nul", "a"}, {"Later", "?"}};
    for (const auto& [function, result] : results) {
        GivenAnEmptyLog();
        EXPECT_EQ(Call(function, {}), result);
        const LoggedLines lines = LogOf(4);
        EXPECT_EQ(std::count(lines.begin(), lines.end(), told), 1) << function;
    }
    GivenAnEmptyLog();
    EXPECT_EQ(Call("Whole", {}), "\xE9");
    const LoggedLines lines = LogOf(3);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), told), 0);
}

TEST_F(LogLines, OfACallbackNameNothing) {
    GivenScript("");
    MyAsyncDeviceExecContext* context = nullptr;
    OnScriptThread(
        [&] { context = device->MakeAsyncContext(device->GetEngine()->evaluate(QStringLiteral("(function() {})"))); });
    ASSERT_NE(context, nullptr);
    GivenAnEmptyLog();
    context->End();
    EXPECT_EQ(LogOf(3), (LoggedLines{{7, "kxpCalverinScript [Desk] ExecuteCallBack [post]: - Stack: 0"},
                                     {7, "kxpCalverinScript [Desk] ExecuteCallBack [execute]: - Stack: 1"},
                                     {7, "kxpCalverinScript [Desk] ExecuteCallBack [executed]"}}));
}

TEST_F(LogLines, CountTheCommandsThatWait) {
    GivenScript("");
    device->Stop();
    GivenAnEmptyLog();
    plain::Params params({"1"});
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(Send(1, params), KXP_OK);
    const LoggedLines lines = LogOf(3);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(lines[static_cast<std::size_t>(i)].text,
                  "kxpCalverinScript [Desk] LoadScriptFromText [post]: 1 - Stack: " + std::to_string(i));
}

TEST_F(LogLines, ShowANullFileNameAsEmpty) {
    GivenScript("");
    device->Stop();
    GivenAnEmptyLog();
    device->LoadScriptFromFile(nullptr, nullptr, false);
    EXPECT_EQ(LogOf(1), (LoggedLines{{7, "kxpCalverinScript [Desk] LoadScriptFromFile [post]:  - Stack: 0"}}));
}

TEST_F(LogLines, OfALongTextAreCut) {
    GivenScript("");
    device->Stop();
    GivenAnEmptyLog();
    device->LoadScriptFromText(nullptr, std::string(5000, 'x').c_str(), false);
    const LoggedLines lines = LogOf(1);
    EXPECT_EQ(lines[0].text.size(), static_cast<std::size_t>(kLogLineSize - 1));
    EXPECT_EQ(lines[0].text.rfind("kxpCalverinScript [Desk] LoadScriptFromText [post]: xxx", 0), 0u);
}

TEST_F(LogLines, OfAnUncaughtExceptionTellLineAndMessageAtLevelFive) {
    GivenScript("({ F: function() {\n\nthrow new Error('boom'); } })");
    GivenAnEmptyLog();
    Call("F");
    const LoggedLines lines = LogOf(8);
    ASSERT_EQ(lines.size(), 8u);
    EXPECT_EQ(lines[2], (LogLine{5, "CalverinScript_ [Desk] Uncaught Exception - line:3, message: boom"}));
    EXPECT_EQ(lines[3], (LogLine{5, "CalverinScript_ [Desk]     <script>:3:1: Error: boom"}));
    EXPECT_EQ(lines[4], (LogLine{5, "CalverinScript_ [Desk]     | throw new Error('boom'); } })"}));
    EXPECT_EQ(lines[5], (LogLine{5, "CalverinScript_ [Desk]     | ^"}));
    EXPECT_EQ(lines[6], (LogLine{5, "CalverinScript_ [Desk]     at F (<script>:3)"}));
}

TEST_F(LogLines, OfAScriptThatIsStoppedTellWhereItWas) {
    plain::Value inside("inside");
    TellWhenInside(inside);
    GivenScript("function spin() {\n for (;;) {} }\n({ F: function() { inside(); spin(); } })");
    GivenAnEmptyLog();
    const auto params = plain::Params::ForFunction("F", {});
    ASSERT_EQ(Send(3, *params, nullptr), KXP_OK);
    ASSERT_TRUE(inside.WaitFor("yes", 6 * kDeadlineMs));
    device->Release();
    device = nullptr;
    const LoggedLines lines = LogOf(8);
    const auto has = [&](const char* text) {
        return std::find(lines.begin(), lines.end(), LogLine{5, std::string("CalverinScript_ [Desk] ") + text}) !=
               lines.end();
    };
    EXPECT_TRUE(has("Script Stopped"));
    EXPECT_TRUE(has("    <script>:2: stopped in spin, which did not come back"));
    EXPECT_TRUE(has("    at F (<script>:3)"));
}

TEST_F(LogLines, AreNotWrittenWhileTheLogIsOff) {
    GivenScript("({ F: function() {} })");
    GivenAnEmptyLog();
    CloseLog();
    Call("F");
    EXPECT_TRUE(Log().empty());
}

TEST_F(LogLines, NameADeviceWithoutANameByNothing) {
    device->SetName(nullptr);
    GivenAnEmptyLog();
    device->LoadScriptFromText(nullptr, "1", false);
    EXPECT_EQ(LogOf(1), (LoggedLines{{7, "kxpCalverinScript [] LoadScriptFromText [post]: 1 - Stack: 0"}}));
}

} // namespace
