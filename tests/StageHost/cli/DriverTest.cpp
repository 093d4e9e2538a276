#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include "StageHostProcess.h"

/// Shows that keep drivers: setups, stored commands, published variables, with the module beside the program.

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

constexpr const char* kOlder = "({ Info: { Commands: { Fade: { Name: 'Fade to', Params: { level: { Type: 'Integer', "
                               "MinValue: 0, MaxValue: 100 } } } } },\n"
                               "   Setup: { channel: 1 }, Device: { Level: 0, Scale: 1.5 },\n"
                               "   Fade: function (level, seconds) { this.Device.Level = Number(level);\n"
                               "       return [this.Setup.channel, level, seconds].join('/'); },\n"
                               "   Out: function () { return 'out'; } })";

/// `Out` is gone; `Fade` has its parameters the other way round, one more, and other limits.
constexpr const char* kNewer = "({ Info: { Commands: { Fade: { Name: 'Go to', Params: { level: { Type: 'Integer', "
                               "MinValue: 0, MaxValue: 60 } } } } },\n"
                               "   Setup: { channel: 1, host: 'x' }, Device: { Level: 0, Extra: 'new' },\n"
                               "   Fade: function (seconds, level, curve) { this.Device.Level = Number(level);\n"
                               "       return [this.Setup.channel, level, seconds, curve].join('|'); } })";

class ShowWithADriver : public testing::Test {
protected:
    void GivenDriver(const char* text) { host.File(Text("dimmer.js"), text); }

    void GivenShow(const QByteArray& rest = {}, const char* devices = R"({ "name": "desk", "driver": "dimmer.js" })") {
        show = host.File(Text("show.json"), QByteArray("{\n    \"name\": \"Evening\",\n    \"devices\": [\n        ") +
                                                devices + "\n    ]" + rest + "\n}\n");
    }

    /// Runs a command on the show.
    void Run(const char* command, const QStringList& words = {}) { host.Run(QStringList{Text(command), show} + words); }

    void ThenExitCodeIs(int code) {
        EXPECT_EQ(host.ExitCode(), code) << host.Output().toStdString() << host.Errors().toStdString();
    }

    void ThenErrorsBegin(const char* text) {
        EXPECT_TRUE(host.Errors().startsWith(Text(text))) << host.Errors().toStdString();
    }
    void ThenErrorsHave(const char* text) {
        EXPECT_TRUE(host.Errors().contains(Text(text))) << host.Errors().toStdString();
    }

    void ThenOutputHas(const char* text) {
        EXPECT_TRUE(host.Output().contains(Text(text))) << host.Output().toStdString();
    }

    /// What a stored command gives when it is sent.
    QString Sent(const char* name) {
        host.SetInput(QByteArray("stored ") + name + "\n");
        Run("watch", {Text("desk.ScriptFunctions")});
        host.SetInput({});
        return host.Output().trimmed();
    }

    QByteArray ShowText() const {
        QFile file(show);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    void Store(const char* name, const QStringList& command) {
        Run("store", QStringList{Text(name), Text("desk")} + command);
        ThenExitCodeIs(0);
    }

    StageHostProcess host;
    QString show;
};

TEST_F(ShowWithADriver, SendsUserCommandsByTheirNamesAndChecksWhatTheyAreGiven) {
    GivenDriver(kOlder);
    GivenShow();
    Run("send", {Text("desk"), Text("Fade to"), Text("level=40"), Text("seconds=2")});
    ThenExitCodeIs(0);
    ThenOutputHas("1/40/2");
    Run("send", {Text("desk"), Text("Fade to"), Text("level=101")});
    ThenExitCodeIs(2);
    EXPECT_EQ(host.Errors(), Text("desk: the parameter \"level\" takes 0 to 100, not 101\n"));
    Run("send", {Text("desk"), Text("Fade to"), Text("speed=1")});
    EXPECT_EQ(host.Errors(),
              Text("desk: the command \"Fade to\" has no parameter \"speed\"; there are: level, seconds\n"));
    Run("send", {Text("desk"), Text("Fade"), Text("level=1")});
    EXPECT_EQ(host.Errors(),
              Text("desk: has no command \"Fade\"; the function of that name is its command \"Fade to\"\n"));
}

TEST_F(ShowWithADriver, IsRefusedBeforeItBeginsWhereTheDriverDoesNotTakeACommand) {
    GivenDriver(kOlder);
    const std::pair<const char*, const char*> mistakes[] = {
        {R"("steps": [{ "set": { "Go": "1" } },
                      { "device": "desk", "command": "Fade to", "params": { "speed": 1 } }])",
         "show.json: steps[1]: desk: the command \"Fade to\" has no parameter \"speed\""},
        {R"("steps": [{ "device": "desk", "command": "Fade to", "params": { "level": 101 } }])",
         "show.json: steps[0]: desk: the parameter \"level\" takes 0 to 100, not 101"},
        {R"("tasks": [{ "name": "t", "lines": [{}, { "device": "desk", "command": "Fly" }] }])",
         "show.json: tasks[0].lines[1]: desk: has no command \"Fly\""},
        {R"("cues": [{ "name": "c", "device": "desk", "command": "Out", "params": { "now": { "variable": "Go" } } }])",
         "show.json: cues[0]: desk: the command \"Out\" has no parameter \"now\""},
        {R"("shows": [{ "name": "s", "device": "desk", "command": "Fade" }])",
         "show.json: shows[0]: desk: has no command \"Fade\""},
    };
    for (const auto& [mistake, told] : mistakes) {
        GivenShow(QByteArray(R"(, "variables": [{ "name": "Go" }], )") + mistake);
        for (const char* command : {"run", "watch"}) {
            Run(command);
            ThenExitCodeIs(2);
            ThenErrorsHave(told);
            EXPECT_EQ(host.Output(), QString()) << command;
        }
    }
}

TEST_F(ShowWithADriver, GivesParametersThatAreKnownOnlyWhenTheyAreSent) {
    GivenDriver(kOlder);
    host.File(Text("level.txt"), "40");
    GivenShow(R"(, "variables": [{ "name": "Pace", "value": "2" }],
        "steps": [{ "device": "desk", "command": "Fade to", "expect": { "result": "1/40/2" },
                    "params": { "level": { "file": "level.txt" }, "seconds": { "variable": "Pace" } } }])");
    Run("run");
    ThenExitCodeIs(0);
}

TEST_F(ShowWithADriver, MayBeADriverAlone) {
    GivenDriver(kOlder);
    host.Run({Text("send"), host.Folder() + Text("/dimmer.js"), Text("script"), Text("Fade to"), Text("level=40")});
    ThenExitCodeIs(0);
    ThenOutputHas("1/40/");
    host.Run({Text("run"), host.Folder() + Text("/dimmer.js")});
    ThenExitCodeIs(2);
    ThenErrorsHave("dimmer.js is a script, not a show file");
}

TEST_F(ShowWithADriver, TellsHowAFunctionIsRunThatIsNoCommand) {
    GivenDriver(kOlder);
    GivenShow({}, R"({ "name": "desk", "script": "dimmer.js" })");
    Run("send", {Text("desk"), Text("Out")});
    ThenExitCodeIs(2);
    EXPECT_EQ(
        host.Errors(),
        Text("desk: has no command \"Out\"; it is a function of the script: \"Execute Function With Params\" with "
             "\"Script Function Name=Out\" runs it\n"));
}

TEST_F(ShowWithADriver, TakesNoCommandThatTheDriverHasDisabled) {
    GivenDriver("({ Info: { Commands: { f: { Status: 'Disabled' } } }, f: function () { return 1; } })");
    GivenShow();
    Run("send", {Text("desk"), Text("f")});
    ThenExitCodeIs(2);
    ThenErrorsHave("the command \"f\" is disabled");
}

TEST_F(ShowWithADriver, ShowsAndSetsPublishedVariables) {
    GivenDriver(kOlder);
    GivenShow();
    host.SetInput("set desk.Level 5\nget desk.Level\nsend desk \"Fade to\" level=7\nget desk.Level\nget desk.Scale\n");
    Run("watch", {Text("desk.Level")});
    ThenExitCodeIs(0);
    QStringList lines = host.Output().split(QLatin1Char('\n'));
    lines = lines.filter(QRegExp(Text("^[0-9./]+$")));
    EXPECT_EQ(lines, QStringList({Text("5"), Text("1/7/"), Text("7"), Text("1.50000")}));
    Run("variables", {Text("desk.Level"), Text("desk.Scale")});
    ThenOutputHas("desk.Level  Integer  0");
    Run("definition");
    ThenOutputHas("Fade to");
    host.Run({Text("definition"), host.Folder() + Text("/dimmer.js")});
    ThenOutputHas("Fade to");
    host.Run({Text("variables"), host.Folder() + Text("/dimmer.js"), Text("script.Level")});
    ThenExitCodeIs(0);
}

TEST_F(ShowWithADriver, OpensWithTheNewerEditionAndItsStoredCommandsKeepTheirValues) {
    GivenDriver(kOlder);
    GivenShow(",\n    \"variables\": [ { \"name\": \"Pace\", \"type\": \"Integer\", \"value\": 8 } ]");
    Run("setup", {Text("desk"), Text("channel=7")});
    ThenExitCodeIs(0);
    Store("Half", {Text("Fade to"), Text("level=50"), Text("seconds=2")});
    Store("Paced", {Text("Fade to"), Text("level=10"), Text("seconds:=Pace")});
    EXPECT_EQ(Sent("Half"), Text("7/50/2"));
    EXPECT_EQ(Sent("Paced"), Text("7/10/8"));

    GivenDriver(kNewer);
    EXPECT_EQ(Sent("Half"), Text("7/50/2")) << "the stored edition runs until it is replaced";
    ThenErrorsHave("desk: the setup in the show holds another edition of dimmer.js");
    Run("setup");
    ThenExitCodeIs(0);
    ThenOutputHas("desk: setup renewed");

    EXPECT_EQ(Sent("Half"), Text("7|50|2|")) << "as the update would write it, before it is written";
    ThenErrorsHave("stored command \"Half\": \"Fade to\" of desk has changed (+ curve = ); \"stagehost update ");
    Run("update");
    ThenExitCodeIs(0);
    EXPECT_EQ(host.Output(),
              Text("Half: updated (+ curve = )\nPaced: updated (+ curve = )\nThe show file is written.\n"));
    EXPECT_EQ(Sent("Half"), Text("7|50|2|"));
    EXPECT_FALSE(host.Errors().contains(Text("stored command")));
    EXPECT_EQ(Sent("Paced"), Text("7|10|8|"));
    Run("update");
    EXPECT_EQ(host.Output(), Text("Half: as it was\nPaced: as it was\nThere is nothing to write.\n"));
    Run("variables", {Text("desk.Extra")});
    ThenExitCodeIs(0);
    EXPECT_TRUE(
        ShowText().startsWith("{\n    \"name\": \"Evening\",\n    \"devices\": [\n        { \"name\": \"desk\""));
}

TEST_F(ShowWithADriver, TellsAStoredCommandWhoseFunctionIsGoneAndKeepsIt) {
    GivenDriver(kOlder);
    GivenShow();
    Run("setup");
    Store("Dark", {Text("Out")});
    Store("Half", {Text("Fade to"), Text("level=50")});
    GivenDriver(kNewer);
    Run("setup");
    Run("update");
    ThenExitCodeIs(1);
    ThenOutputHas("Dark: gone");
    ThenOutputHas("Half: updated");
    EXPECT_TRUE(ShowText().contains("\"name\":\"Dark\""));
    EXPECT_EQ(Sent("Half"), Text("1|50||")) << "one that is gone does not hold up the others";
    ThenErrorsHave("stored command \"Dark\": desk has no command \"Out\" any more");
    Sent("Dark");
    ThenExitCodeIs(1);
    EXPECT_EQ(Sent("Nothing"), QString());
    ThenExitCodeIs(2);
}

TEST_F(ShowWithADriver, TellsAValueThatTheNewerLimitsDoNotAllow) {
    GivenDriver(kOlder);
    GivenShow();
    Run("setup");
    Store("Full", {Text("Fade to"), Text("level=100")});
    GivenDriver(kNewer);
    Run("setup");
    Run("update");
    ThenOutputHas("Full: updated (level = 100 -> 60, + curve = )");
    EXPECT_EQ(Sent("Full"), Text("1|60||"));
}

TEST_F(ShowWithADriver, PlaysStoredCommandsInStepsTasksAndCues) {
    GivenDriver(kOlder);
    GivenShow();
    Run("setup");
    Store("Half", {Text("Fade to"), Text("level=50")});
    QByteArray text = ShowText();
    text.insert(
        text.lastIndexOf('}'),
        R"(, "tasks": [{"name": "T", "lines": [{"stored": "Half"}]}], "cues": [{"name": "C", "stored": "Half"}],)"
        R"("steps": [{"stored": "Half", "expect": {"result": "1/50/"}}, {"set": {"desk.Level": 1}}, {"task": "T"},)"
        R"({"wait": {"variable": "desk.Level", "value": "50"}}, {"set": {"desk.Level": 1}}, {"cue": "C"},)"
        R"({"wait": {"variable": "desk.Level", "value": "50"}}])");
    show = host.File(Text("show.json"), text);
    Run("run");
    ThenExitCodeIs(0);
    ThenOutputHas("all 7 steps went well");
    text.replace("\"result\": \"1/50/\"", "\"result\": \"no\"");
    show = host.File(Text("show.json"), text);
    Run("run");
    ThenExitCodeIs(1);
    ThenErrorsHave("expected the result \"no\", not \"1/50/\"");
}

TEST_F(ShowWithADriver, TwoDevicesWithOneDriverHaveTheirOwnSettingsValuesAndCommands) {
    GivenDriver(kOlder);
    GivenShow({}, R"({ "name": "desk", "driver": "dimmer.js" }, { "name": "back", "driver": "dimmer.js" })");
    Run("setup", {Text("back"), Text("channel=2")});
    Run("setup");
    Store("A", {Text("Fade to"), Text("level=10")});
    Run("store", {Text("B"), Text("back"), Text("Fade to"), Text("level=20")});
    EXPECT_EQ(Sent("A"), Text("1/10/"));
    EXPECT_EQ(Sent("B"), Text("2/20/"));
    host.SetInput("stored A\nstored B\nget desk.Level\nget back.Level\n");
    Run("watch", {Text("desk.ScriptFunctions")});
    EXPECT_EQ(host.Output(), Text("1/10/\n2/20/\n10\n20\n"));
    GivenDriver(kNewer);
    Run("setup");
    Run("update");
    ThenExitCodeIs(0);
    EXPECT_EQ(Sent("A"), Text("1|10||"));
    EXPECT_EQ(Sent("B"), Text("2|20||"));
}

TEST_F(ShowWithADriver, RunsADriverThatRemovesTheDefaults) {
    GivenDriver("({ Info: { Options: { RemoveDefaultCommandsAndVariables: true } }, Device: { Status: 'mine' },\n"
                "   Ask: function (what) { return 'asked ' + what; } })");
    GivenShow();
    Run("send", {Text("desk"), Text("Ask"), Text("what=time")});
    ThenExitCodeIs(0);
    ThenOutputHas("asked time");
    Run("variables", {Text("--json")});
    const QJsonArray variables = host.Json().value(Text("variables")).toArray();
    ASSERT_EQ(variables.size(), 1);
    EXPECT_EQ(variables.at(0).toObject().value(Text("value")).toString(), Text("mine"));
    Run("setup");
    Store("Q", {Text("Ask"), Text("what=more")});
    EXPECT_EQ(Sent("Q"), QString()) << "the variable that is watched is not there";
    host.SetInput("stored Q\n");
    Run("watch", {Text("desk.Status")});
    EXPECT_EQ(host.Output(), Text("asked more\n"));
}

TEST_F(ShowWithADriver, TellsWhatIsThrownThoughTheDriverHasRemovedTheVariableForIt) {
    GivenDriver("({ Info: { Options: { RemoveDefaultCommandsAndVariables: true } }, Device: { Error: 'none' },\n"
                "   Boom: function () { throw new Error('boom'); }, Fine: function () { return 'fine'; },\n"
                "   Later: function () { QCalverin.SetTimeout(function () { throw new Error('late'); }, 400); } })");
    GivenShow();
    Run("send", {Text("desk"), Text("Boom")});
    ThenExitCodeIs(1);
    ThenErrorsBegin("Uncaught Exception - line:2, message: boom\n    ");
    ThenErrorsHave("dimmer.js:2:24: Error: boom\n    | Boom: function () { throw new Error('boom'); }, ");
    host.SetInput("send desk Boom\nsend desk Fine\n");
    Run("watch", {Text("desk")});
    ThenExitCodeIs(1);
    EXPECT_EQ(host.Output(), Text("fine\n"));
    host.Begin({Text("watch"), show});
    host.Say("send desk Later");
    EXPECT_TRUE(host.WaitForErrors("desk: Uncaught Exception - line:3, message: late\n"));
    host.Finish();
    ThenExitCodeIs(1);
}

// What is thrown before the device is back from a command counts as the command's, so the timers leave
// it time for that.
constexpr const char* kTimers =
    "({ Device: { Level: 0 },\n"
    "   Later: function () { var self = this;\n"
    "       QCalverin.SetTimeout(function () { self.Device.Level = 1; }, 500);\n"
    "       QCalverin.SetTimeout(function () { throw new Error('late'); }, 400); },\n"
    "   Ask: function () { var id = QCalverin.PostponeResult(), self = this;\n"
    "       QCalverin.SetTimeout(function () { self.Device.Level = 2; throw new Error('other'); }, 400);\n"
    "       QCalverin.SetTimeout(function () { QCalverin.SetResult(id, 'good'); }, 1200); },\n"
    "   Boom: function () { throw new Error('boom'); },\n"
    "   Try: function () { return 'got <' + QCalverin.Perform('desk2', 'Boom') + '>'; } })";

TEST_F(ShowWithADriver, TellsWhatATimerThrowsAsItComesAndEndsWithOne) {
    GivenDriver(kTimers);
    GivenShow();
    host.Begin({Text("watch"), show});
    host.Say("send desk Later");
    EXPECT_TRUE(host.WaitForErrors("desk: Uncaught Exception - line:4, message: late\n"));
    host.Finish();
    ThenExitCodeIs(1);
    GivenShow(
        R"(, "steps": [{ "device": "desk", "command": "Later" }, { "wait": { "variable": "desk.Level", "value": "1" } }])");
    Run("run");
    ThenExitCodeIs(1);
    ThenErrorsBegin("desk: Uncaught Exception - line:4, message: late\n    ");
    ThenErrorsHave("dimmer.js:4:");
    Run("run", {Text("--json")});
    ThenExitCodeIs(1);
    EXPECT_FALSE(host.Json().value(Text("ok")).toBool(true));
    EXPECT_EQ(host.Json().value(Text("error")).toString(), Text("desk: Uncaught Exception - line:4, message: late"));
}

TEST_F(ShowWithADriver, ALateAnswerKeepsItsResultWhenATimerThrowsMeanwhile) {
    GivenDriver(kTimers);
    GivenShow();
    Run("send", {Text("desk"), Text("Ask"), Text("--json")});
    EXPECT_FALSE(host.Json().value(Text("ok")).toBool(true));
    EXPECT_EQ(host.Json().value(Text("exitCode")).toInt(), 1);
    EXPECT_EQ(host.Json().value(Text("error")).toString(), Text("desk: Uncaught Exception - line:6, message: other"));
    EXPECT_EQ(host.Json().value(Text("outcome")).toString(), Text("done"));
    EXPECT_EQ(host.Json().value(Text("result")).toString(), Text("good"));
    ThenErrorsBegin("desk: Uncaught Exception - line:6, message: other\n    ");
    EXPECT_EQ(host.Json().value(Text("where")).toObject().value(Text("line")).toInt(), 6);
    ThenExitCodeIs(1);
}

TEST_F(ShowWithADriver, WhatACommandOfAnotherScriptThrowsIsThatScriptsBusiness) {
    GivenDriver(kTimers);
    GivenShow({}, R"({ "name": "desk", "driver": "dimmer.js" }, { "name": "desk2", "driver": "dimmer.js" })");
    Run("send", {Text("desk"), Text("Try")});
    ThenOutputHas("got <>");
    EXPECT_EQ(host.Errors(), QString());
    ThenExitCodeIs(0);
}

TEST_F(ShowWithADriver, AFailureThatAStepExpectsIsToldOnce) {
    GivenDriver(kTimers);
    GivenShow(R"(, "steps": [{ "device": "desk", "command": "Boom", "expect": { "error": "Script: boom" } }])");
    Run("run");
    EXPECT_EQ(host.Errors(), QString());
    ThenExitCodeIs(0);
}

TEST_F(ShowWithADriver, TakesAVariableOfTheDriverForNoFailure) {
    GivenDriver("({ Info: { Options: { RemoveDefaultCommandsAndVariables: true } },\n"
                "   Device: { Error: 'none', Status: 'fine' }, Ask: function () { return 'asked'; } })");
    GivenShow();
    Run("send", {Text("desk"), Text("Ask")});
    ThenExitCodeIs(0);
    ThenOutputHas("asked");
    GivenDriver(
        "({ Info: { Options: { RemoveDefaultCommandsAndVariables: true } }, _mStart: function () { throw 5; } })");
    Run("variables");
    ThenExitCodeIs(1);
    ThenErrorsBegin("desk: Uncaught Exception - line:1, message: 5\n    ");
}

TEST_F(ShowWithADriver, TellsAMalformedSetupWithItsPlaceAndGoesOn) {
    GivenDriver(kOlder);
    for (const char* bad : {"no xml", "<Other/>", "<DeviceData/>", "<DeviceData Version='1000'/>"}) {
        GivenShow({},
                  (QByteArray(R"({ "name": "desk", "driver": "dimmer.js", "setup": ")") + bad + "\" }").constData());
        const QByteArray before = ShowText();
        Run("send", {Text("desk"), Text("Fade to"), Text("level=3")});
        ThenExitCodeIs(0);
        ThenOutputHas("1/3/");
        EXPECT_TRUE(
            host.Errors().contains(show + Text(": devices[0].setup: the device does not take its setup (code ")))
            << host.Errors().toStdString();
        Run("setup");
        ThenExitCodeIs(2);
        EXPECT_EQ(ShowText(), before) << "a setup that is not understood is not written over";
    }
}

TEST_F(ShowWithADriver, KeepsTheDevicesNameOverThatInTheSetup) {
    GivenDriver(kOlder);
    GivenShow();
    Run("setup");
    Store("Half", {Text("Fade to"), Text("level=50")});
    QByteArray text = ShowText();
    text.replace("\"desk\"", "\"table\"")
        .replace("<StoredCommand Name=\\\"desk\\\"", "<StoredCommand Name=\\\"table\\\"");
    ASSERT_TRUE(text.contains("Name=\\\"desk\\\""));
    show = host.File(Text("show.json"), text);
    GivenDriver(kNewer);
    Run("setup");
    Run("update");
    ThenExitCodeIs(0);
    ThenOutputHas("Half: updated");
}

TEST_F(ShowWithADriver, TellsAMistakeInTheDriverAndLeavesTheShowAsItIs) {
    GivenDriver(kOlder);
    GivenShow();
    Run("setup");
    const QByteArray before = ShowText();
    GivenDriver("\nvar a = ;");
    Run("setup");
    ThenExitCodeIs(1);
    ThenErrorsHave("dimmer.js:2:9: SyntaxError: unexpected \";\"\n    | var a = ;\n    |         ^\n");
    EXPECT_EQ(ShowText(), before);
    Run("send", {Text("desk"), Text("Fade to"), Text("level=1")});
    ThenExitCodeIs(0);
    GivenShow();
    Run("variables");
    ThenExitCodeIs(1);
    ThenErrorsHave("dimmer.js:2:9: SyntaxError: unexpected \";\"\n    | var a = ;\n    |         ^\n");
    GivenDriver("({ _mStart: function () { throw new Error('no power'); } })");
    Run("variables");
    ThenExitCodeIs(1);
    ThenErrorsBegin("desk: Script: no power\n    ");
    ThenErrorsHave("dimmer.js:1:27: Error: no power\n");
}

TEST_F(ShowWithADriver, StaysAsItIsWhenWhatIsAskedForIsRefused) {
    GivenDriver(kOlder);
    GivenShow();
    Run("setup");
    const QByteArray before = ShowText();
    Run("store", {Text("X"), Text("desk"), Text("Fade to"), Text("level=500")});
    ThenExitCodeIs(2);
    Run("store", {Text("X"), Text("nobody"), Text("Fade to")});
    ThenExitCodeIs(2);
    Run("store", {Text("a.b"), Text("desk"), Text("Fade to")});
    ThenExitCodeIs(2);
    Run("store", {Text("X"), Text("desk"), Text("Fade to"), Text("level:=Nothing")});
    ThenExitCodeIs(2);
    Run("setup", {Text("desk"), Text("channel=x")});
    ThenExitCodeIs(2);
    Run("setup", {Text("nobody")});
    ThenExitCodeIs(2);
    EXPECT_EQ(ShowText(), before);
}

TEST_F(ShowWithADriver, ReplacesAStoredCommandOfTheSameName) {
    GivenDriver(kOlder);
    GivenShow();
    Store("Half", {Text("Fade to"), Text("level=50")});
    Store("Half", {Text("Fade to"), Text("level=51")});
    EXPECT_EQ(Sent("Half"), Text("1/51/"));
    EXPECT_EQ(QJsonDocument::fromJson(ShowText()).object().value(Text("commands")).toArray().size(), 1);
}

TEST_F(ShowWithADriver, TellsWhatIsWrongWithStoredCommandsInTheShowFile) {
    GivenDriver(kOlder);
    GivenShow(
        R"(, "commands": [{ "name": "A", "xml": "<a" }, { "name": "B", "xml": "<a Name='x'><Command ID='1'/></a>" }],)"
        R"("steps": [{ "stored": "C" }, { "stored": "A", "params": {} }])");
    Run("run");
    ThenExitCodeIs(2);
    ThenErrorsHave(": commands[0].xml: 1:");
    ThenErrorsHave(": commands[1].xml: there is no device \"x\"");
    ThenErrorsHave(": steps[0].stored: there is no stored command \"C\"");
    ThenErrorsHave(": steps[1].params: needs a \"device\"");
}

TEST_F(ShowWithADriver, TellsProgramsWhatWasKept) {
    GivenDriver(kOlder);
    GivenShow();
    Run("setup", {Text("--json")});
    EXPECT_TRUE(host.Json().value(Text("written")).toBool());
    Store("Half", {Text("Fade to"), Text("level=50")});
    Run("update", {Text("--json")});
    const QJsonObject entry = host.Json().value(Text("entries")).toArray().at(0).toObject();
    EXPECT_EQ(entry.value(Text("standing")).toString(), Text("as it was"));
    EXPECT_FALSE(host.Json().value(Text("written")).toBool(true));
}

} // namespace
