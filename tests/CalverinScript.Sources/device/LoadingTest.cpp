#include <QScriptEngine>

#include "DeviceFixture.h"

#include "DeviceTexts.h"
#include "ScriptAnalysis.h"
#include "ScriptScan.h"
#include "ScriptWorld.h"

namespace {

class Loading : public DeviceFixture {};

TEST_F(Loading, OfAFileShowsItsPathItsTextAndItsFunctions) {
    GivenScript("");
    const std::string text = "({ One: function() {}, Two: function(a) {}, _hidden: function() {}, Three: 3 })";
    const std::string path = WriteFile("a.js", text);
    WhenFileIsLoaded(path);
    EXPECT_EQ(variables.fileName.Text(), path);
    EXPECT_EQ(variables.scriptText.Text(), text);
    EXPECT_EQ(variables.functions.Text(), "One\nTwo\n");
    EXPECT_EQ(Error(), "");
}

TEST_F(Loading, OfATextLeavesTheFileNameEmpty) {
    GivenScript("");
    WhenFileIsLoaded(WriteFile("a.js", "({ A: function() {} })"));
    WhenTextIsLoaded("({ B: function() {} })");
    EXPECT_EQ(variables.fileName.Text(), "");
    EXPECT_EQ(variables.functions.Text(), "B\n");
}

TEST_F(Loading, ShowsStatusLoadingAndThenReady) {
    GivenScript("");
    WhenTextIsLoaded("({})");
    EXPECT_EQ(variables.status.Plain().History(), (std::vector<std::string>{"1", "0"}));
}

TEST_F(Loading, OfAnUnreadableFileReportsItAndKeepsTheNameAndTheFunctions) {
    GivenScript("({ Old: function() { return 'still here' } })");
    device->LoadScriptCommand("/no/such/file.js", false);
    EXPECT_EQ(Error(), DeviceText::kUnreadableFile);
    EXPECT_EQ(device->GetWorld().GetSet().scriptFileName, QStringLiteral("/no/such/file.js"));
    EXPECT_EQ(device->GetWorld().GetSet().scriptText, QString());
    EXPECT_EQ(Call("Old"), "still here");
}

TEST_F(Loading, OfANullNameIsAnUnreadableFile) {
    GivenScript("");
    EXPECT_FALSE(device->LoadScriptCommand(nullptr, false));
    EXPECT_EQ(Error(), DeviceText::kUnreadableFile);
}

TEST_F(Loading, OfAScriptThatThrowsReportsLineAndText) {
    GivenScript("");
    EXPECT_FALSE(device->EvaluateScriptCommand(QStringLiteral("var a = 1;\nthrow new Error('boom');"), false));
    EXPECT_EQ(Error(), "Script: Uncaught exception at line 2, Error: boom");
}

TEST_F(Loading, OfAScriptWithASyntaxErrorReportsLineAndText) {
    GivenScript("");
    EXPECT_FALSE(device->EvaluateScriptCommand(QStringLiteral("var a = 1;\n\nvar b = ;"), false));
    EXPECT_EQ(Error(), "Script: Uncaught exception at line 3, SyntaxError: Parse error");
}

TEST_F(Loading, OfAScriptWhoseValueIsAnErrorReportsItsMessage) {
    GivenScript("");
    EXPECT_FALSE(device->EvaluateScriptCommand(QStringLiteral("new Error('not an exception')"), false));
    EXPECT_EQ(Error(), "Script: not an exception");
}

TEST_F(Loading, ThatFailsKeepsTheFunctionListAndCallsReportTheFailure) {
    GivenScript("({ Old: function() { return 1 } })");
    EXPECT_FALSE(device->EvaluateScriptCommand(QStringLiteral("throw new Error('boom')"), false));
    EXPECT_EQ(variables.functions.Text(), "Old\n");
    EXPECT_FALSE(device->ExecuteScriptFunction("Old", nullptr, nullptr));
    EXPECT_EQ(Error(), "Script: boom");
    EXPECT_EQ(device->IsRunning(), KXP_OK);
}

TEST_F(Loading, TellsTheDialogsFileNameThenText) {
    GivenScript("");
    QStringList told;
    QObject::connect(device, &MCalverinScript_Device::SignalNotifyScriptFileNameChange,
                     [&](const QString& name) { told << QStringLiteral("file ") + name; });
    QObject::connect(device, &MCalverinScript_Device::SignalNotifyScriptChange,
                     [&](const QString& text) { told << QStringLiteral("text ") + text; });
    device->EvaluateScriptCommand(QStringLiteral("1"), false);
    EXPECT_EQ(told, (QStringList{QStringLiteral("file "), QStringLiteral("text 1")}));
}

TEST_F(Loading, ReadsAFileAsUtf8WhenItIsAndAsLatin1Otherwise) {
    GivenScript("");
    WhenFileIsLoaded(WriteFile("u.js", "({ Get: function() { return '\xC3\xA9' } })"));
    EXPECT_EQ(Call("Get"), "\xE9");
    WhenFileIsLoaded(WriteFile("l.js", "({ Get: function() { return '\xE9' } })"));
    EXPECT_EQ(Call("Get"), "\xE9");
}

TEST_F(Loading, OfAScriptThatEndsInThisPublishesWhatItAddedAndNoBuiltIn) {
    GivenScript("");
    EXPECT_TRUE(device->EvaluateScriptCommand(QStringLiteral("this.Mine = function() {}; this"), false));
    EXPECT_EQ(variables.functions.Text(), "Mine\n");
    EXPECT_TRUE(device->EvaluateScriptCommand(QStringLiteral("this.Mine = function() {}; this"), false));
    EXPECT_EQ(variables.functions.Text(), "Mine\n");
}

TEST_F(Loading, OfAScriptWhoseValueIsNoObjectPublishesNothing) {
    GivenScript("({ Old: function() {} })");
    for (const char* text : {"42", "'text'", "undefined", "null", ""}) {
        EXPECT_TRUE(device->EvaluateScriptCommand(QString::fromLatin1(text), false)) << text;
        EXPECT_EQ(variables.functions.Text(), "") << text;
    }
}

TEST_F(Loading, OnTheScriptThreadItselfRunsDirectlyAndDoesNotDeadlock) {
    GivenScript("");
    const std::string path = WriteFile("a.js", "({ A: function() {} })");
    bool result = false;
    OnScriptThread([&] { result = device->LoadScriptCommand(path.c_str(), false); });
    EXPECT_TRUE(result);
    EXPECT_EQ(variables.functions.Text(), "A\n");
}

TEST_F(Loading, InStopModeTouchesNeitherTheRunningScriptNorTheVariables) {
    GivenScript("({ Live: function() { return 1 } })");
    QStringList errors;
    QObject::connect(device, &MCalverinScript_Device::SignalNotifyErrorChange,
                     [&](const QString& text) { errors << text; });
    QScriptEngine engine;
    EXPECT_TRUE(device->EvaluateScript(QStringLiteral("({ Analysed: function() {} })"), &engine));
    EXPECT_EQ(errors, QStringList{QLatin1String(DeviceText::kAnalysed)});
    EXPECT_EQ(Error(), "");
    EXPECT_EQ(device->GetAnalysis().GetSet().engine, nullptr);
    EXPECT_EQ(Call("Live"), "1");
    EXPECT_EQ(Call("Analysed"), "(code 3)");
}

TEST_F(Loading, InStopModeReportsFailuresToTheDialogsOnly) {
    GivenScript("");
    QStringList errors;
    int errorLine = 0;
    QObject::connect(device, &MCalverinScript_Device::SignalNotifyErrorChange,
                     [&](const QString& text) { errors << text; });
    QObject::connect(device, &MCalverinScript_Device::SignalNotifyLineErrorChange, [&](int line) { errorLine = line; });
    QScriptEngine engine;
    EXPECT_FALSE(device->EvaluateScript(QStringLiteral("1;\n(("), &engine));
    EXPECT_EQ(errors, QStringList{QStringLiteral("Script: Uncaught exception at line 2, SyntaxError: Parse error")});
    EXPECT_EQ(errorLine, 2);
    EXPECT_EQ(Error(), "");
}

TEST_F(Loading, InStopModeKnowsTheSameGlobals) {
    GivenScript("");
    QScriptEngine engine;
    EXPECT_TRUE(device->EvaluateScript(QStringLiteral("({ kind: typeof QCalverin })"), &engine));
    EXPECT_EQ(device->GetAnalysis().GetSet().global.property(QStringLiteral("kind")).toString(),
              QStringLiteral("object"));
    EXPECT_TRUE(device->EvaluateScript(QStringLiteral("({ kind: typeof QCalverin })"), &engine));
}

TEST(CommandFromFunction, NamesTheResultFirstAndThenTheParametersWithoutBlanks) {
    const MScriptCommand command =
        CommandFromFunction(QStringLiteral("F"), QStringLiteral("function F( a , bc,  d) { return (1); }"));
    ASSERT_EQ(command.params.size(), 4);
    EXPECT_EQ(command.params[0].name, QStringLiteral("Result"));
    EXPECT_EQ(command.params[0].direction, ParamDirection::Out);
    EXPECT_EQ(command.params[1].name, QStringLiteral("a"));
    EXPECT_EQ(command.params[2].name, QStringLiteral("bc"));
    EXPECT_EQ(command.params[3].name, QStringLiteral("d"));
    EXPECT_EQ(command.params[3].direction, ParamDirection::In);
}

TEST(CommandFromFunction, OfAFunctionWithoutParametersHasTheResultAlone) {
    EXPECT_EQ(CommandFromFunction(QStringLiteral("F"), QStringLiteral("function () {}")).params.size(), 1);
    EXPECT_EQ(CommandFromFunction(QStringLiteral("F"), QStringLiteral("no brackets")).params.size(), 1);
}

} // namespace
