#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QRegularExpression>

#include "StageHostProcess.h"

/// The program with the module beside it: what a technician does at the desk, from the command line.

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

class ScriptAtTheDesk : public testing::Test {
protected:
    void GivenScript(const char* text) { script = host.File(Text("script.js"), text); }

    void Exec(const QStringList& functionAndArguments, const QStringList& options = {}) {
        host.Run(options + QStringList{Text("exec"), script} + functionAndArguments);
    }

    void ThenResultIs(const char* result) {
        EXPECT_EQ(host.Output().toStdString(), std::string(result) + "\n");
        EXPECT_EQ(host.Errors().toStdString(), "");
        EXPECT_EQ(host.ExitCode(), 0);
    }

    /// The script stands in the text as "script.js".
    void ThenFails(int exitCode, const char* error) {
        EXPECT_EQ(host.Errors().replace(script, Text("script.js")).toStdString(), std::string(error) + "\n");
        EXPECT_EQ(host.Output().toStdString(), "");
        EXPECT_EQ(host.ExitCode(), exitCode);
    }

    StageHostProcess host;
    QString script;
};

constexpr qint64 kSoon = 5000; // ms

} // namespace

TEST_F(ScriptAtTheDesk, GivesTheResultOfAFunction) {
    GivenScript("({ add: function (a, b) { return Number(a) + Number(b); } })");
    Exec({Text("add"), Text("2"), Text("-5")});
    ThenResultIs("-3");
}

TEST_F(ScriptAtTheDesk, GivesArgumentsAsTextAsTheyAre) {
    GivenScript("({ list: function () { return Array.prototype.join.call(arguments, '|'); } })");
    Exec({Text("list"), Text("--x"), Text("-5"), {}, Text("a \"b\""), Text("\xC3\xA4"), Text("line\nfeed")});
    ThenResultIs("--x|-5||a \"b\"|\xC3\xA4|line\nfeed||");
}

TEST_F(ScriptAtTheDesk, GivesAnEmptyLineForAFunctionThatReturnsNothing) {
    GivenScript("({ quiet: function () {} })");
    Exec({Text("quiet")});
    ThenResultIs("");
}

TEST_F(ScriptAtTheDesk, WorksWithEveryLink) {
    GivenScript("({ f: function () { return 'ok'; } })");
    for (const char* link : {"newer", "older", "none"}) {
        Exec({Text("f")}, {Text("--link"), Text(link)});
        ThenResultIs("ok");
    }
}

TEST_F(ScriptAtTheDesk, TellsWhatAFunctionThrows) {
    GivenScript("({ boom: function () { throw new Error('bad thing'); } })");
    Exec({Text("boom")});
    ThenFails(1, "Script: bad thing\n"
                 "    script.js:1:24: Error: bad thing\n"
                 "    | ({ boom: function () { throw new Error('bad thing'); } })\n"
                 "    |                        ^\n"
                 "    at boom (script.js:1)");
}

TEST_F(ScriptAtTheDesk, TellsProgramsWhereSomethingWasThrown) {
    GivenScript("function half(x) {\n  return x / two;\n}\n({ Fade: function (level) {\n  return half(level);\n} })");
    Exec({Text("Fade"), Text("4")}, {Text("--json")});
    EXPECT_EQ(host.Json().value(Text("error")).toString(), Text("Script: Can't find variable: two"));
    const QJsonObject where = host.Json().value(Text("where")).toObject();
    EXPECT_EQ(where.value(Text("file")).toString(), script);
    EXPECT_EQ(where.value(Text("line")).toInt(), 2);
    EXPECT_EQ(where.value(Text("column")).toInt(), 14);
    EXPECT_EQ(where.value(Text("source")).toString(), Text("return x / two;"));
    const QJsonArray calls = where.value(Text("calls")).toArray();
    ASSERT_EQ(calls.size(), 2);
    EXPECT_EQ(calls.at(0).toObject().value(Text("function")).toString(), Text("half"));
    EXPECT_EQ(calls.at(1).toObject().value(Text("function")).toString(), Text("Fade"));
    EXPECT_EQ(calls.at(1).toObject().value(Text("line")).toInt(), 5);
}

TEST_F(ScriptAtTheDesk, TellsAStepAndALineOfTheUserWhereItsScriptFailed) {
    GivenScript("({ boom: function () {\n  throw new Error('bad thing');\n} })");
    const QString show = host.File(Text("show.json"), R"({"devices":[{"name":"desk","driver":"script.js"}],
        "steps":[{"device":"desk","command":"boom"}]})");
    const QString place = Text("\n    ") + script +
                          Text(":2:3: Error: bad thing\n    | throw new Error('bad thing');\n    | ^\n    at boom (");
    host.Run({Text("run"), show});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Errors().contains(Text("Script: bad thing") + place)) << host.Errors().toStdString();
    host.Run({Text("run"), Text("--json"), show});
    EXPECT_EQ(host.Json().value(Text("where")).toObject().value(Text("line")).toInt(), 2);
    host.SetInput("send desk boom");
    host.Run({Text("watch"), show});
    EXPECT_TRUE(host.Errors().contains(Text("Script: bad thing") + place)) << host.Errors().toStdString();
}

TEST_F(ScriptAtTheDesk, SaysWhichEditionTheEngineSpeaks) {
    GivenScript("({ f: function () {\n  let x = 1;\n} })");
    Exec({Text("f")});
    ThenFails(1, "Script: Uncaught exception at line 2, SyntaxError: Parse error\n"
                 "    script.js:2:7: SyntaxError: expected \";\" before \"x\"\n"
                 "    | let x = 1;\n"
                 "    |     ^\n"
                 "    note: this engine speaks ECMAScript 5.1, which has no \"let\": write \"var\"");
}

TEST_F(ScriptAtTheDesk, ShowsWhatAScriptTracesAndPrints) {
    GivenScript(
        "({ f: function () { QCalverin.TraceMessage('lamps are on', 'INFO'); print('level', 5);\n"
        "   QCalverin.TraceMessage('small', 'DEBUG'); QCalverin.TraceMessage('grave', 'ERROR'); return 1; } })");
    const auto withoutTimes = [&] {
        return host.Errors()
            .replace(QRegularExpression(Text("\\d\\d:\\d\\d:\\d\\d\\.\\d{3}")), Text("TIME"))
            .toStdString();
    };
    Exec({Text("f")});
    EXPECT_EQ(host.Output(), Text("1\n"));
    EXPECT_EQ(withoutTimes(), "TIME  script  INFO     lamps are on\nTIME  script  NORMAL   level 5\n"
                              "TIME  script  DEBUG    small\nTIME  script  ERROR    grave\n");
    Exec({Text("f")}, {Text("--log-level"), Text("Normal")});
    EXPECT_EQ(withoutTimes(), "TIME  script  NORMAL   level 5\nTIME  script  ERROR    grave\n");
    Exec({Text("f")}, {Text("--log-level"), Text("fatal")});
    EXPECT_EQ(withoutTimes(), "");
    Exec({Text("f")}, {Text("--log-level"), Text("inof")});
    EXPECT_TRUE(host.Errors().startsWith(Text("there is no level \"inof\"; did you mean \"info\"?")))
        << host.Errors().toStdString();
    Exec({Text("f")}, {Text("--log=scirpt")});
    EXPECT_TRUE(host.Errors().endsWith(Text("the show has no device \"scirpt\"; did you mean \"script\"?\n")));
}

TEST_F(ScriptAtTheDesk, ShowsTheLogOfOneDeviceAlone) {
    GivenScript("({ _mStart: function () { print('here'); }, f: function () {} })");
    const QString show = host.File(Text("show.json"), R"({
        "devices": [{"name":"a","driver":"script.js"}, {"name":"bb","driver":"script.js"}],
        "steps": [{"device":"a","command":"f"}, {"device":"bb","command":"f"}]})");
    host.Run({Text("run"), Text("--log=bb"), show});
    EXPECT_TRUE(host.Errors().contains(Text("  bb  COMMAND  ExecuteScriptFunctionWithParams [post]: ")))
        << host.Errors().toStdString();
    EXPECT_TRUE(host.Errors().contains(Text("  bb  NORMAL   here\n")));
    EXPECT_FALSE(host.Errors().contains(Text("  a   ")));
    host.Run({Text("run"), show});
    EXPECT_TRUE(host.Errors().contains(Text("  a   NORMAL   here\n")));
    EXPECT_FALSE(host.Errors().contains(Text("COMMAND")));
}

TEST_F(ScriptAtTheDesk, FoldsALineThatIsTracedAgainAndAgainAndLosesNone) {
    GivenScript("({ f: function () { for (var i = 0; i < 5000; ++i) print('again'); print('end'); return 1; } })");
    const QString log = host.Folder() + Text("/device.log");
    Exec({Text("f")}, {Text("--log-file"), log});
    EXPECT_EQ(host.Errors().count(Text("NORMAL   again\n")), 1);
    EXPECT_TRUE(host.Errors().endsWith(Text("NORMAL   end\n"))) << host.Errors().toStdString();
    int again = 0;
    QRegularExpression count(Text("\\.\\.\\. (\\d+) times more"));
    for (auto match = count.globalMatch(host.Errors()); match.hasNext();)
        again += match.next().captured(1).toInt();
    EXPECT_EQ(again, 4999);
    EXPECT_LT(QFileInfo(log).size(), 10000);
}

TEST_F(ScriptAtTheDesk, LeavesOutOfAFloodOfLinesWhatNobodyCanReadAndSaysSo) {
    GivenScript(
        "({ f: function () { for (var i = 0; i < 20000; ++i) print('line ' + i); throw new Error('seen'); } })");
    const QString log = host.Folder() + Text("/device.log");
    Exec({Text("f")}, {Text("--log-file"), log});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Errors().contains(Text("Script: seen\n    "))) << "what fails is told however much is traced";
    EXPECT_TRUE(
        host.Errors().contains(Text(" lines left out: more than 1000 came in a second (--log-file keeps all)\n")));
    QFile file(log);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("] line 19999\n"));
}

TEST_F(ScriptAtTheDesk, ShowsWhatIsTracedWhileADeviceStopsAfterCtrlC) {
    GivenScript("({ _mStop: function () { for (var i = 0; i < 9; ++i) print('bye'); } })");
    const QString show = host.File(Text("show.json"), R"({"devices":[{"name":"desk","driver":"script.js"}]})");
    host.Begin({Text("watch"), show});
    EXPECT_TRUE(host.WaitForErrors("runs. \"help\" tells"));
    host.Interrupt();
    host.Finish();
    EXPECT_TRUE(host.Errors().contains(Text("  desk  NORMAL   bye\n"))) << host.Errors().toStdString();
    EXPECT_TRUE(host.Errors().endsWith(Text("  desk  NORMAL   ... 8 times more\n"))) << host.Errors().toStdString();
}

TEST_F(ScriptAtTheDesk, TellsProgramsWhatATimerThrewBesideAResult) {
    GivenScript("({ f: function () { var id = QCalverin.PostponeResult();\n"
                "   QCalverin.SetTimeout(function () { throw new Error('other'); }, 400);\n"
                "   QCalverin.SetTimeout(function () { QCalverin.SetResult(id, 'good'); }, 1200); } })");
    Exec({Text("f")}, {Text("--json")});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_FALSE(host.Json().value(Text("ok")).toBool(true));
    EXPECT_EQ(host.Json().value(Text("exitCode")).toInt(), 1);
    EXPECT_EQ(host.Json().value(Text("error")).toString(), Text("script: Uncaught Exception - line:2, message: other"));
    EXPECT_EQ(host.Json().value(Text("result")).toString(), Text("good"));
}

TEST_F(ScriptAtTheDesk, TellsAMissingFunction) {
    GivenScript("({ _hidden: function () { return 1; } })");
    Exec({Text("nothing")});
    ThenFails(1, "nothing: the script has no function of that name");
    Exec({Text("_hidden")});
    ThenFails(1, "_hidden: the script has no function of that name");
}

TEST_F(ScriptAtTheDesk, TellsAMistakeInTheScriptWithoutWaitingForTheDevice) {
    GivenScript("var a = 1;\nvar b = ;\n");
    Exec({Text("f")});
    ThenFails(1, "Script: Uncaught exception at line 2, SyntaxError: Parse error\n"
                 "    script.js:2:9: SyntaxError: unexpected \";\"\n"
                 "    | var b = ;\n"
                 "    |         ^");
    EXPECT_LT(host.Milliseconds(), host.Soon(kSoon));
    host.Run({Text("check"), script});
    EXPECT_EQ(host.Output(), script + Text(":2:9: SyntaxError: unexpected \";\"\n    | var b = ;\n    |         ^\n"));
    EXPECT_EQ(host.ExitCode(), 1);
}

TEST_F(ScriptAtTheDesk, ChecksAScriptThatThrowsAtItsTopLevel) {
    GivenScript("\n\nthrow new Error('at top');");
    host.Run({Text("check"), script});
    EXPECT_EQ(host.Output(),
              script + Text(":3:1: Error: at top\n    | throw new Error('at top');\n    | ^\n    at the top level (") +
                  script + Text(":3)\n"));
    GivenScript("({})");
    host.Run({Text("check"), script});
    EXPECT_TRUE(host.Output().startsWith(script + Text(": ok\n"))) << host.Output().toStdString();
    EXPECT_EQ(host.ExitCode(), 0);
}

TEST_F(ScriptAtTheDesk, IsNotHeldUpByAFunctionThatNeverReturns) {
    GivenScript("({ hang: function () { while (true) {} } })");
    Exec({Text("hang")}, {Text("--timeout"), Text("2000")});
    ThenFails(3, "no answer to \"Execute Function With Params\" within 2000 ms\n"
                 "    script.js:1: script stopped in hang, which did not come back\n"
                 "    | ({ hang: function () { while (true) {} } })\n"
                 "    | ^\n"
                 "    at hang (script.js:1)");
    EXPECT_LT(host.Milliseconds(), host.Soon(kSoon));
    Exec({Text("hang")}, {Text("--timeout"), Text("2000"), Text("--json")});
    EXPECT_EQ(host.Json().value(Text("where")).toObject().value(Text("line")).toInt(), 1);
}

TEST_F(ScriptAtTheDesk, TellsAtTheEndOfAWatchedShowWhichDeviceHung) {
    GivenScript("({ hang: function () {\n  while (true) {}\n} })");
    const QString show = host.File(Text("show.json"), R"({"devices":[{"name":"desk","driver":"script.js"}]})");
    host.SetInput("send desk hang\nlist\n");
    host.Run({Text("watch"), Text("--timeout"), Text("2000"), show});
    EXPECT_EQ(host.ExitCode(), 3);
    EXPECT_TRUE(host.Errors().contains(
        script + Text(":2: desk stopped in hang, which did not come back\n    | while (true) {}\n")))
        << host.Errors().toStdString();
}

TEST_F(ScriptAtTheDesk, IsNotHeldUpByATopLevelThatNeverEnds) {
    GivenScript("while (true) {}");
    Exec({Text("f")}, {Text("--timeout"), Text("500")});
    ThenFails(3, "no answer to \"Load From File\" within 500 ms\n"
                 "    script.js:1: script stopped in the top level, which did not come back\n"
                 "    | while (true) {}\n"
                 "    | ^\n"
                 "    at the top level (script.js:1)");
    EXPECT_LT(host.Milliseconds(), host.Soon(kSoon));
    host.Run({Text("check"), Text("--timeout"), Text("500"), script});
    EXPECT_EQ(host.ExitCode(), 3);
}

TEST_F(ScriptAtTheDesk, EndsThoughTheStopFunctionNeverReturns) {
    GivenScript("({ f: function () { return 1; },\n   _mStop: function () { while (true) {} } })");
    Exec({Text("f")});
    EXPECT_EQ(host.Output(), Text("1\n"));
    EXPECT_EQ(host.ExitCode(), 0);
    // Nobody waits for the script to say where it was.
    EXPECT_TRUE(host.Errors().isEmpty() ||
                host.Errors().startsWith(script + Text(":2: script stopped in _mStop, which did not come back\n")))
        << host.Errors().toStdString();
    EXPECT_LT(host.Milliseconds(), host.Soon(kSoon));
}

TEST_F(ScriptAtTheDesk, IsStoppedAsAtAnyEndWhenARunIsInterrupted) {
    GivenScript("({ _mStop: function () { QCalverin.TraceMessage('lamps are off', 'INFO'); } })");
    const QString show = host.File(Text("show.json"), R"({
        "devices": [{"name":"desk","script":"script.js"}], "variables": [{"name":"Level"}],
        "steps": [{"wait":{"variable":"Level","value":"never","within":50000}}]})");
    host.Begin({Text("run"), Text("--log"), show});
    EXPECT_TRUE(host.WaitForOutput("desk is ready"));
    host.Interrupt();
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 3);
    EXPECT_TRUE(host.Errors().contains(Text("interrupted "))) << host.Errors().toStdString();
    EXPECT_TRUE(host.Errors().contains(Text("lamps are off\n"))) << host.Errors().toStdString();
}

TEST_F(ScriptAtTheDesk, ShowsTheLogOfTheDevice) {
    GivenScript("({ f: function () { return 1; } })");
    Exec({Text("f")}, {Text("--log")});
    EXPECT_EQ(host.Output().toStdString(), "1\n");
    EXPECT_TRUE(host.Errors().contains(Text("  script  COMMAND  LoadScriptFromFile [post]: ")))
        << host.Errors().toStdString();
    EXPECT_TRUE(host.Errors().contains(Text("  script  COMMAND  LoadScriptFromFile [executed]: ")));
    EXPECT_TRUE(host.Errors().contains(Text("ExecuteScriptFunctionWithParams [executed]: f, ")));
}

TEST_F(ScriptAtTheDesk, KeepsTheLogInAFile) {
    GivenScript("({ f: function () { return 1; } })");
    const QString log = host.Folder() + Text("/device.log");
    Exec({Text("f")}, {Text("--log-file"), log});
    ThenResultIs("1");
    EXPECT_GT(QFileInfo(log).size(), 0);
}

TEST_F(ScriptAtTheDesk, TellsOnceThatTheLogCannotBeWritten) {
    GivenScript("({ f: function () { for (var i = 0; i < 9; ++i) QCalverin.TraceMessage('x', 'ERROR'); return 1; } })");
    for (const char* words : {"--log-file \"$2\" exec", "exec"}) {
        SCOPED_TRACE(words);
        QProcess shell; // files grow no more, as on a full disk
        shell.start(Text("/bin/sh"),
                    {Text("-c"), Text("trap '' XFSZ; ulimit -f 0; exec \"$0\" ") + Text(words) + Text(" \"$1\" f"),
                     Text(STAGEHOST_BIN "/stagehost"), script, host.Folder() + Text("/full.log")});
        ASSERT_TRUE(shell.waitForFinished(60000));
        EXPECT_EQ(shell.exitCode(), 0);
        EXPECT_EQ(shell.readAllStandardOutput().toStdString(), "1\n");
        const QByteArray errors = shell.readAllStandardError();
        EXPECT_EQ(errors.count("the log cannot be written: "), 1) << errors.toStdString();
    }
}

TEST_F(ScriptAtTheDesk, KeepsTheLogInAFileWithAnAccentInItsName) {
    GivenScript("({ f: function () { return 1; } })");
    const QString log = host.Folder() + QString::fromUtf8("/d\xC3\xA9vice.log");
    Exec({Text("f")}, {Text("--log-file"), log});
    ThenResultIs("1");
    EXPECT_GT(QFileInfo(log).size(), 0);
}

TEST_F(ScriptAtTheDesk, ShowsVariablesAndDefinitionOfALoadedScript) {
    GivenScript("({ first: function () {}, second: function (a) {} })");
    host.Run({Text("variables"), Text("--json"), script, Text("script.ScriptFunctions"),
              Text("script.CurrentScriptFileName")});
    const QJsonArray variables = host.Json().value(Text("variables")).toArray();
    ASSERT_EQ(variables.size(), 2);
    EXPECT_EQ(variables.at(0).toObject().value(Text("value")).toString(), Text("first\nsecond\n"));
    EXPECT_EQ(variables.at(1).toObject().value(Text("value")).toString(), script);
    host.Run({Text("definition"), Text("--json"), script});
    EXPECT_EQ(host.ExitCode(), 0);
    const QJsonObject device = host.Json().value(Text("devices")).toArray().at(0).toObject();
    EXPECT_GE(device.value(Text("commands")).toArray().size(), 4);
    EXPECT_GE(device.value(Text("variables")).toArray().size(), 5);
}

TEST_F(ScriptAtTheDesk, GoesOnBehindALoadThatFailedAsExpected) {
    host.File(Text("bad.js"), "throw 'no';");
    host.File(Text("good.js"), "({ f: function () { return 'good'; } })");
    const QString show = host.File(
        Text("show.json"),
        R"({"devices":[{"name":"desk"}],"steps":[)"
        R"({"device":"desk","command":"Load From File","params":{"Script File Name":{"path":"bad.js"}},)"
        R"("expect":{"error":"Script: Uncaught exception at line 1, no"}},)"
        R"({"device":"desk","command":"Load From File","params":{"Script File Name":{"path":"good.js"}}},)"
        R"({"device":"desk","command":3,"params":{"Script Function Name":"f"},"expect":{"result":"good"}}]})");
    host.Run({Text("run"), show});
    EXPECT_EQ(host.ExitCode(), 0) << host.Output().toStdString() << host.Errors().toStdString();
}

TEST_F(ScriptAtTheDesk, DrivesTwoDevicesOfOneShow) {
    host.File(Text("a.js"), "var n = 0; ({ next: function () { return ++n; } })");
    const QString show = host.File(
        Text("show.json"), R"({"devices":[{"name":"left","script":"a.js"},{"name":"right","script":"a.js"}],"steps":[)"
                           R"({"device":"left","command":3,"params":{"Script Function Name":"next"}},)"
                           R"({"device":"left","command":3,"params":{"Script Function Name":"next"}},)"
                           R"({"device":"right","command":3,"params":{"Script Function Name":"next"}}]})");
    host.Run({Text("run"), Text("--json"), show});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    const QJsonArray steps = host.Json().value(Text("steps")).toArray();
    ASSERT_EQ(steps.size(), 3);
    EXPECT_EQ(steps.at(1).toObject().value(Text("result")).toString(), Text("2"));
    EXPECT_EQ(steps.at(2).toObject().value(Text("result")).toString(), Text("1"));
}

TEST(Examples, TheCueListPlaysToItsEnd) {
    StageHostProcess host;
    host.Run({Text("run"), Text(STAGEHOST_ROOT "/examples/cuelist/show.json")});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("19:30:13.50  at once          cue 3.5  Thunder, far away")));
    EXPECT_TRUE(host.Output().contains(Text("The show is over")));
    EXPECT_EQ(host.Errors().toStdString(), "");
    EXPECT_LT(host.Milliseconds(), host.Soon(kSoon));
}

TEST(Examples, TheEveningPlaysToItsEnd) {
    StageHostProcess host;
    host.Run({Text("run"), Text(STAGEHOST_ROOT "/examples/evening/show.json")});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("| doors open, house light from 40 to 60 %")));
    EXPECT_TRUE(host.Output().contains(Text("The show is over")));
    EXPECT_EQ(host.Errors().toStdString(), "");
    EXPECT_LT(host.Milliseconds(), host.Soon(kSoon));
}

TEST(Examples, TheEveningLivesWithTheUser) {
    StageHostProcess host;
    host.SetInput("set Doors open\nwait \"Light level\" 60\nset Doors closed\nwait Music overture\n");
    host.Run({Text("watch"), Text(STAGEHOST_ROOT "/examples/evening/show.json")});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("Task Overture: Status = Running")));
}

TEST(Examples, TheDriverPlaysToItsEnd) {
    StageHostProcess host;
    host.Run({Text("run"), Text(STAGEHOST_ROOT "/examples/driver/show.json")});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("| channel 1 from 80 to 50 % in 2 s")));
    EXPECT_TRUE(host.Output().contains(Text("The show is over")));
    EXPECT_EQ(host.Errors().toStdString(), "") << "the show holds this edition of the driver";
}

TEST(Manual, ItsFullShowPlaysToItsEnd) {
    StageHostProcess host;
    const auto content = [](const char* name) {
        QFile file(Text(STAGEHOST_ROOT "/") + Text(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        return file.readAll();
    };
    const QByteArray manual = content("docs/stagehost.md");
    const int begin = manual.indexOf("```json", manual.indexOf("A full example:")) + 7;
    for (const char* name : {"cuelist.js", "cues.txt"})
        host.File(Text(name), content((QByteArray("examples/cuelist/") + name).constData()));
    host.Run({Text("run"), host.File(Text("show.json"), manual.mid(begin, manual.indexOf("```", begin) - begin))});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("The show is over: all 4 steps went well.")));
}

TEST_F(ScriptAtTheDesk, ALineTellsOfEachTextThatANumberOrAnEnumDoesNotTakeAndTheValueStays) {
    script = host.File(
        Text("misfit.js"),
        "({ Info: { Variables: { Level: { MinValue: 0, MaxValue: 100 }, Mode: { Type: 'Enum', Items: ['calm', 'storm'] "
        "} } },\n"
        "   Device: { Level: 5, Mode: 'storm', Rate: 0.5, Name: 'x' },\n"
        "   Right: function () { var d = this.Device; d.Level = '50'; d.Level = 60; d.Mode = 'calm'; d.Mode = '1'; "
        "d.Mode = 1;\n"
        "                        d.Rate = '0.25'; d.Name = 'no number'; QCalverin.SetValue('script.Level', '7'); },\n"
        "   Wrong: function () { var d = this.Device; d.Level = 'abc'; d.Level = '101'; d.Mode = 'sunny'; d.Rate = "
        "Number('x');\n"
        "                        QCalverin.SetValue('script.Mode', 'rain'); return d.Level + ' ' + d.Mode + ' ' + "
        "d.Rate; } })");
    host.Run({Text("send"), Text("--log"), script, Text("script"), Text("Right")});
    EXPECT_EQ(host.ExitCode(), 0);
    EXPECT_EQ(host.Errors().indexOf(Text("does not take")), -1) << host.Errors().toStdString();
    host.Run({Text("send"), Text("--log"), script, Text("script"), Text("Wrong")});
    EXPECT_TRUE(host.Output().contains(Text("100 1 0.5\n"))) << host.Output().toStdString();
    for (const char* line :
         {"ALARM    the variable \"Level\" does not take \"abc\", which is no whole number from 0 to 100\n",
          "ALARM    the variable \"Level\" does not take \"101\", which is no whole number from 0 to 100\n",
          "ALARM    the variable \"Mode\" does not take \"sunny\", which is none of its items: calm, storm\n",
          "ALARM    the variable \"Rate\" does not take \"NaN\", which is no number\n",
          "ALARM    the variable \"script.Mode\" does not take \"rain\", which is none of its items\n"})
        EXPECT_TRUE(host.Errors().contains(Text(line))) << line << host.Errors().toStdString();
}
