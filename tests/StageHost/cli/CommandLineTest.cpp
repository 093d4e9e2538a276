#include <sys/stat.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>

#include "StageHostProcess.h"

/// The program with a module of our own that does what it is told: every way in which a module can answer, or not.

namespace {

constexpr qint64 kSoon = 4000; // ms: far below the time after which a device gives up a held command

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

QStringList List(std::initializer_list<const char*> words) {
    QStringList list;
    for (const char* word : words)
        list += Text(word);
    return list;
}

class CommandLine : public testing::Test {
protected:
    CommandLine() {
        script = host.File(Text("script.js"), "function hello say hello\n"
                                              "function echo echo\n"
                                              "function bad fail Script: boom\n"
                                              "function held held Script: held boom\n"
                                              "function refuse refuse 7\n"
                                              "function elsewhere elsewhere\n"
                                              "function early early\n"
                                              "function twice twice\n"
                                              "function never never\n"
                                              "function hang hang\n"
                                              "function block block\n");
        broken = host.File(Text("broken.js"), "error Script: Uncaught exception at line 7, SyntaxError: Parse error\n");
        endless = host.File(Text("endless.js"), "hang\n");
    }

    /// Runs a function of the script with a short time limit.
    void Exec(const char* function, const QStringList& arguments = {}) {
        host.Run(List({"--timeout", "500", "exec"}) + QStringList{script, Text(function)} + arguments);
    }

    void Fails(int exitCode, const char* error) {
        EXPECT_EQ(host.ExitCode(), exitCode);
        EXPECT_TRUE(host.Errors().contains(Text(error))) << host.Errors().toStdString();
        EXPECT_EQ(host.Output().toStdString(), "");
    }

    QString Show(const QByteArray& steps, const QByteArray& rest = {}) {
        return host.File(Text("show.json"),
                         R"({"devices":[{"name":"desk","script":"script.js"}],"steps":[)" + steps + "]" + rest + "}");
    }

    static QByteArray Step(const QByteArray& function, const QByteArray& rest = {}) {
        return R"({"device":"desk","command":3,"params":{"Script Function Name":")" + function + "\"}" + rest + "}";
    }

    StageHostProcess host{Text(STAGEHOST_BIN "/fakemodule.kxp6")};
    QString script;
    QString broken;
    QString endless;
};

} // namespace

TEST_F(CommandLine, ExecPrintsTheResultAlone) {
    Exec("hello");
    EXPECT_EQ(host.ExitCode(), 0);
    EXPECT_EQ(host.Output().toStdString(), "hello\n");
    EXPECT_EQ(host.Errors().toStdString(), "");
}

TEST_F(CommandLine, ExecGivesEveryWordBehindTheFunctionToTheFunction) {
    Exec("echo", List({"-5", "--x", "", "a b", "--", "-h", "--json", "\xC3\xA4"}));
    EXPECT_EQ(host.Output().toStdString(), "-5|--x||a b|--|-h|--json|\xC3\xA4\n");
    EXPECT_EQ(host.ExitCode(), 0);
}

TEST_F(CommandLine, ExecSaysOnceThatCharactersWereReplaced) {
    Exec("echo", List({"\xE2\x82\xAC", "\xF0\x9F\x8E\xAD!"}));
    EXPECT_EQ(host.Output().toStdString(), "?|?!||||||\n");
    EXPECT_EQ(host.Errors().count(Text("Latin-1")), 1);
    EXPECT_EQ(host.ExitCode(), 0);
}

TEST_F(CommandLine, ExecTellsTheErrorOfAFunction) {
    Exec("bad");
    Fails(1, "Script: boom");
}

TEST_F(CommandLine, ExecDoesNotWaitForAHeldCommandWhoseErrorIsKnown) {
    host.Run(List({"exec"}) + QStringList{script, Text("held")});
    Fails(1, "Script: held boom");
    EXPECT_LT(host.Milliseconds(), host.Soon(kSoon));
    host.Run(List({"exec"}) + QStringList{broken, Text("hello")});
    Fails(1, "Script: Uncaught exception at line 7, SyntaxError: Parse error");
    EXPECT_LT(host.Milliseconds(), host.Soon(kSoon));
}

TEST_F(CommandLine, ExecTellsThatACommandWasRefused) {
    Exec("refuse");
    Fails(1, "code 7");
    Exec("nothing");
    Fails(1, "nothing: the script has no function of that name");
}

TEST_F(CommandLine, ExecTakesAnEndFromAnyThreadAtAnyTimeAndOftenerThanOnce) {
    Exec("elsewhere");
    EXPECT_EQ(host.Output().toStdString(), "elsewhere\n");
    EXPECT_EQ(host.ExitCode(), 0);
    Exec("early");
    EXPECT_EQ(host.Output().toStdString(), "early\n");
    EXPECT_EQ(host.ExitCode(), 0);
    Exec("twice");
    EXPECT_EQ(host.ExitCode(), 0);
}

TEST_F(CommandLine, ExecGivesUpAtItsTimeLimit) {
    for (const char* function : {"never", "hang", "block"}) {
        SCOPED_TRACE(function);
        Exec(function);
        Fails(3, "no answer to \"Execute Function With Params\" within 500 ms");
        EXPECT_LT(host.Milliseconds(), host.Soon(kSoon));
    }
    host.Run(List({"--timeout", "300", "exec"}) + QStringList{endless, Text("hello")});
    Fails(3, "no answer to \"Load From File\" within 300 ms");
}

TEST_F(CommandLine, ExecWorksWithAFileNameThatAHostCanOnlyCarryFromTheWorkingFolder) {
    const QString folder = host.Folder() + QString::fromUtf8("/\xE2\x82\xAC");
    ASSERT_TRUE(QDir().mkpath(folder));
    ASSERT_TRUE(QFile::copy(script, folder + Text("/s.js")));
    host.SetWorkingFolder(folder);
    host.Run(List({"exec", "s.js", "hello"}));
    EXPECT_EQ(host.Output().toStdString(), "hello\n");
    ASSERT_TRUE(QFile::copy(script, folder + QString::fromUtf8("/\xE2\x82\xAC.js")));
    host.Run(List({"exec", "\xE2\x82\xAC.js", "hello"}));
    Fails(2, "beyond Latin-1");
}

TEST_F(CommandLine, ExecGivesJson) {
    host.Run(List({"--json", "exec"}) + QStringList{script, Text("hello")});
    EXPECT_EQ(host.ExitCode(), 0);
    EXPECT_EQ(host.Json().value(Text("result")).toString(), Text("hello"));
    EXPECT_EQ(host.Json().value(Text("ok")).toBool(), true);
    EXPECT_EQ(host.Json().value(Text("status")).toString(), Text("Ready"));
    host.Run(List({"--json", "exec"}) + QStringList{script, Text("bad")});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_EQ(host.Json().value(Text("error")).toString(), Text("Script: boom"));
    EXPECT_EQ(host.Json().value(Text("exitCode")).toInt(), 1);
}

TEST_F(CommandLine, BadUseGivesTwo) {
    const QString show = Show("");
    const QList<QStringList> uses{
        {},
        List({"play"}),
        List({"exec"}),
        List({"exec"}) + QStringList{script},
        List({"exec"}) + QStringList{script, Text("echo")} + List({"1", "2", "3", "4", "5", "6", "7", "8", "9"}),
        List({"exec", "nowhere.js", "f"}),
        List({"exec", "/", "f"}),
        List({"check"}),
        List({"check", "nowhere.js"}),
        List({"check", "a", "b"}),
        List({"run"}),
        List({"run", "nowhere.json"}),
        List({"send"}) + QStringList{show},
        List({"send"}) + QStringList{show, Text("desk")},
        List({"send"}) + QStringList{show, Text("lamp"), Text("3")},
        List({"send"}) + QStringList{show, Text("desk"), Text("Nothing")},
        List({"send"}) + QStringList{show, Text("desk"), Text("3"), Text("no equals sign")},
        List({"send"}) + QStringList{show, Text("desk"), Text("3"), Text("Nothing=1")},
        List({"definition", "a", "b"}),
        List({"definition", "nowhere.js"}),
        List({"variables"}),
        List({"variables"}) + QStringList{show, Text("nothing")},
        List({"check", "--timeout", "0"}) + QStringList{script},
        List({"check", "--timeout", "soon"}) + QStringList{script},
        List({"check", "--link", "all"}) + QStringList{script},
        List({"check", "--unknown"}) + QStringList{script},
        List({"exec", "--log-file", "/nowhere/x.log"}) + QStringList{script, Text("echo")},
        List({"run", "--log-file", "/nowhere/x.log"}) + QStringList{show},
        List({"run", "--log=nobody"}) + QStringList{show},
        List({"exec", "--log-file", ""}) + QStringList{script, Text("echo")},
        List({"exec", "--module", ""}) + QStringList{script, Text("echo")},
        List({"nonsense", "--help"}),
        List({"help", "nonsense"}),
    };
    for (const auto& words : uses) {
        SCOPED_TRACE(words.join(QLatin1Char(' ')).toStdString());
        host.Run(words);
        EXPECT_EQ(host.ExitCode(), 2);
        EXPECT_FALSE(host.Errors().isEmpty());
        EXPECT_EQ(host.Output().toStdString(), "");
        host.Run(List({"--json"}) + words);
        EXPECT_EQ(host.ExitCode(), 2);
        EXPECT_EQ(host.Json().value(Text("exitCode")).toInt(), 2) << host.Output().toStdString();
    }
}

TEST_F(CommandLine, ExecSaysHowManyArgumentsAFunctionTakes) {
    Exec("echo", List({"1", "2", "3", "4", "5", "6", "7", "8", "9"}));
    Fails(2, "a function takes at most 8 arguments");
}

TEST_F(CommandLine, AModuleThatCannotBeUsedGivesFour) {
    for (const char* mood : {"entry-fails", "create-fails", "no-definition", "broken-definition"}) {
        SCOPED_TRACE(mood);
        host.SetMood(mood);
        Exec("hello");
        EXPECT_EQ(host.ExitCode(), 4);
        EXPECT_FALSE(host.Errors().isEmpty());
    }
    for (const QString& module : {Text(STAGEHOST_BIN "/noentrypoint.kxp6"), script, Text("/nowhere.kxp6"), Text("/")}) {
        SCOPED_TRACE(module.toStdString());
        StageHostProcess other(module);
        other.Run(List({"variables"}) + QStringList{script});
        EXPECT_EQ(other.ExitCode(), 4);
        EXPECT_TRUE(other.Errors().contains(module)) << other.Errors().toStdString();
    }
}

TEST_F(CommandLine, AModuleThatHangsWhileItIsLoadedGivesFour) {
    host.SetMood("initialize-hangs");
    Exec("hello");
    Fails(4, "the module does not come back");
}

TEST_F(CommandLine, AStartThatHangsGivesThree) {
    host.SetMood("start-hangs");
    Exec("hello");
    Fails(3, "script: has not started within 500 ms");
    EXPECT_LT(host.Milliseconds(), host.Soon(kSoon));
}

TEST_F(CommandLine, AStartThatHangsForGoodDoesNotHangTheProgram) {
    host.SetMood("start-hangs-for-good");
    Exec("hello");
    Fails(3, "a call into the module does not come back");
}

TEST_F(CommandLine, AReleaseThatHangsDoesNotHangTheProgram) {
    host.SetMood("release-hangs");
    Exec("hello");
    EXPECT_EQ(host.Output().toStdString(), "hello\n");
    EXPECT_EQ(host.ExitCode(), 3);
    EXPECT_TRUE(host.Errors().contains(Text("does not come back from its release")));
}

TEST_F(CommandLine, SendPrintsResultStatusAndError) {
    host.Run(List({"send"}) + QStringList{Show(""), Text("desk"), Text("Execute Function With Params"),
                                          Text("Script Function Name=echo"), Text("Param1=-1=2"), Text("9=last")});
    EXPECT_EQ(host.ExitCode(), 0);
    EXPECT_EQ(host.Output().toStdString(), "Result:  -1=2|||||||last\nStatus:  Ready\nError:\n");
    host.Run(List({"send"}) + QStringList{Show(""), Text("desk"), Text("2"), Text("Script Function Name=bad")});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_EQ(host.Output().toStdString(), "Result:\nStatus:  Ready\nError:   Script: boom\n");
}

TEST_F(CommandLine, SendGivesJsonAlsoWhenThereIsNoAnswer) {
    host.Run(List({"send", "--json", "--timeout", "300"}) +
             QStringList{Show(""), Text("desk"), Text("3"), Text("Script Function Name=hang")});
    EXPECT_EQ(host.ExitCode(), 3);
    EXPECT_EQ(host.Json().value(Text("outcome")).toString(), Text("no answer"));
    EXPECT_EQ(host.Json().value(Text("status")).toString(), Text("Executing"));
    EXPECT_EQ(host.Json().value(Text("exitCode")).toInt(), 3);
    EXPECT_TRUE(host.Json().value(Text("error")).toString().startsWith(Text("no answer to ")));
}

TEST_F(CommandLine, DefinitionShowsCommandsAndVariables) {
    host.Run(List({"definition"}));
    EXPECT_EQ(host.ExitCode(), 0);
    EXPECT_TRUE(host.Output().contains(Text("Execute Function With Params")));
    EXPECT_TRUE(host.Output().contains(Text("ScriptFunctions")));
    host.Run(List({"definition", "--json"}) + QStringList{Show("")});
    const QJsonObject device = host.Json().value(Text("devices")).toArray().at(0).toObject();
    EXPECT_EQ(device.value(Text("device")).toString(), Text("desk"));
    EXPECT_EQ(device.value(Text("commands")).toArray().size(), 4);
    EXPECT_EQ(device.value(Text("commands")).toArray().at(3).toObject().value(Text("parameters")).toArray().size(), 10);
    EXPECT_EQ(device.value(Text("variables")).toArray().size(), 3);
}

TEST_F(CommandLine, VariablesShowsAllOrThoseNamed) {
    const QString show = Show("", R"(,"variables":[{"name":"level","type":"Integer","value":7}])");
    host.Run(List({"variables"}) + QStringList{show});
    EXPECT_EQ(host.ExitCode(), 0);
    EXPECT_TRUE(host.Output().contains(Text("desk.Status")));
    host.Run(List({"variables", "--json"}) + QStringList{show, Text("level"), Text("desk.ScriptFunctions")});
    const QJsonArray variables = host.Json().value(Text("variables")).toArray();
    ASSERT_EQ(variables.size(), 2);
    EXPECT_EQ(variables.at(0).toObject().value(Text("value")).toString(), Text("7"));
    EXPECT_TRUE(variables.at(1).toObject().value(Text("value")).toString().contains(Text("hello\n")));
}

TEST_F(CommandLine, RunPlaysTheStepsOfAShow) {
    host.Run(List({"run"}) + QStringList{Show(Step("hello", R"(,"say":"Greet","expect":{"result":"hello"})") + "," +
                                              Step("bad", R"(,"expect":{"error":"Script: boom"})"))});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("1. Greet")));
    EXPECT_TRUE(host.Output().contains(Text("   | hello\n")));
    EXPECT_TRUE(host.Output().contains(Text("failed as expected: Script: boom")));
    EXPECT_TRUE(host.Output().endsWith(Text("The show is over: all 2 steps went well.\n")));
}

TEST_F(CommandLine, RunBindsVariablesToParameters) {
    const QString show =
        Show(R"({"device":"desk","command":3,"params":{"Script Function Name":"echo","Param1":{"variable":"level"},)"
             R"("Param2":{"file":"text.txt"},"Param3":{"path":"text.txt"},"Result":{"variable":"answer"}}},)"
             R"({"device":"desk","command":3,"params":{"Script Function Name":"echo","Param1":{"variable":"answer"}}})",
             R"(,"variables":[{"name":"level","type":"Integer","value":7},{"name":"answer"}])");
    const QString file = host.File(Text("text.txt"), "words");
    host.Run(List({"run", "--json"}) + QStringList{show});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    const QJsonArray steps = host.Json().value(Text("steps")).toArray();
    const QString first = Text("7|words|") + file + Text("|||||");
    EXPECT_EQ(steps.at(0).toObject().value(Text("result")).toString(), first);
    EXPECT_EQ(steps.at(1).toObject().value(Text("result")).toString(), first + Text("|||||||"));
}

TEST_F(CommandLine, RunSaysThatCharactersOfATextFileWereReplaced) {
    host.File(Text("text.txt"), "5 \xE2\x82\xAC");
    host.Run(List({"run"}) +
             QStringList{Show(R"({"device":"desk","command":3,"expect":{"result":"5 ?|||||||"},)"
                              R"("params":{"Script Function Name":"echo","Param1":{"file":"text.txt"}}})")});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_EQ(host.Errors().count(Text("text.txt: note: a host carries Latin-1 text only")), 1);
}

TEST_F(CommandLine, ADisplayThatDoesNotAnswerIsNoObstacle) {
    qputenv("DISPLAY", ":4077");
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    qunsetenv("QT_QPA_PLATFORM");
    Exec("hello");
    qunsetenv("DISPLAY");
    qputenv("QT_QPA_PLATFORM", platform);
    EXPECT_EQ(host.Output().toStdString(), "hello\n");
    EXPECT_EQ(host.Errors().toStdString(), "");
    EXPECT_EQ(host.ExitCode(), 0);
}

TEST_F(CommandLine, RunEndsAtTheFirstStepThatGoesOtherwiseThanExpected) {
    const QList<QPair<QByteArray, QString>> cases{
        {Step("hello", R"(,"expect":{"result":"bye"})"), Text("expected the result \"bye\", not \"hello\"")},
        {Step("hello", R"(,"expect":{"error":"no"})"), Text("expected the error \"no\", not \"\"")},
        {Step("bad"), Text("Script: boom")},
        {Step("nothing"), Text("the script has no function of that name")},
    };
    for (const auto& [step, text] : cases) {
        SCOPED_TRACE(step.toStdString());
        host.Run(List({"run"}) + QStringList{Show(step + "," + Step("hello"))});
        EXPECT_EQ(host.ExitCode(), 1);
        EXPECT_TRUE(host.Errors().contains(Text("step 1"))) << host.Errors().toStdString();
        EXPECT_TRUE(host.Errors().contains(text)) << host.Errors().toStdString();
        EXPECT_FALSE(host.Output().contains(Text("2. ")));
    }
    host.Run(List({"run", "--timeout", "300"}) + QStringList{Show(Step("hang"))});
    EXPECT_EQ(host.ExitCode(), 3);
    host.Run(List({"run"}) + QStringList{Show(R"({"device":"desk","command":"Nothing"})")});
    EXPECT_EQ(host.ExitCode(), 2);
}

TEST_F(CommandLine, RunGoesOnOnceTheDeviceIsFreeAgainBehindAnExpectedFailure) {
    host.Run(List({"run"}) + QStringList{Show(Step("held", R"(,"expect":{"error":"Script: held boom"})") + "," +
                                              Step("hello", R"(,"expect":{"result":"hello"})"))});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
}

TEST_F(CommandLine, TellsWhatWasProbablyMeantAndWhatThereIs) {
    const auto saysTo = [&](const QStringList& words) {
        host.Run(words);
        EXPECT_EQ(host.ExitCode(), 2) << words.join(QLatin1Char(' ')).toStdString();
        return host.Errors().section(QLatin1Char('\n'), 0, 0).toStdString();
    };
    const QString show = host.File(Text("show.json"), R"({"devices":[{"name":"desk"}], "tasks":[{"name":"Overture"}],
        "variables":[{"name":"Level"},{"name":"Doors"}], "cues":[{"name":"Go on"}]})");
    EXPECT_EQ(saysTo(List({"wacth", "x"})).find("there is no command \"wacth\"; did you mean \"watch\"? There are: "),
              0U);
    EXPECT_EQ(saysTo(List({"run", "--jsno", "x"}))
                  .find("there is no option \"--jsno\"; did you mean \"--json\"? There are: "),
              0U);
    EXPECT_EQ(saysTo({Text("send"), show, Text("dsek"), Text("x")}),
              "the show has no device \"dsek\"; did you mean \"desk\"?");
    EXPECT_EQ(saysTo({Text("send"), show, Text("desk"), Text("Load From Fiel")})
                  .find("desk: has no command \"Load From Fiel\"; did you mean \"Load From File\"? There are: "),
              0U);
    EXPECT_EQ(saysTo({Text("variables"), show, Text("Levle")})
                  .find("there is no variable \"Levle\"; did you mean \"Level\"? There are: "),
              0U);
    EXPECT_EQ(saysTo({Text("watch"), show, Text("Ovreture")})
                  .find("the show has no object \"Ovreture\"; did you mean \"Overture\"? There are: "),
              0U);
    for (const auto& [line, answer] :
         {std::pair("sned x y", "there is no \"sned\"; did you mean \"send\"? There are: "),
          std::pair("get Dors", "there is no variable \"Dors\"; did you mean \"Doors\"? "),
          std::pair("task Overtur stop", "the show has no task \"Overtur\"; did you mean \"Overture\"?"),
          std::pair("cue go", "the show has no cue \"go\"; there are: Go on")}) {
        host.SetInput(line);
        host.Run({Text("watch"), show});
        EXPECT_TRUE(host.Errors().contains(Text(answer))) << host.Errors().toStdString();
    }
    host.SetInput({});
}

TEST_F(CommandLine, RunTellsEveryMistakeOfAShowFileWithItsPlace) {
    const QString show = host.File(Text("bad.json"), R"({"devices":[{"name":"a","script":1}],"stps":[]})");
    host.Run(List({"run"}) + QStringList{show});
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_TRUE(host.Errors().startsWith(
        show + Text(": stps: unknown key; did you mean \"steps\"? There are: name, host, folders, resources, ")))
        << host.Errors().toStdString();
    EXPECT_TRUE(host.Errors().endsWith(Text("\n") + show + Text(": devices[0].script: expected text\n")));
}

TEST_F(CommandLine, RunTellsWhichDeviceCannotLoadItsScript) {
    host.File(Text("script.js"), "error Script: no\n");
    host.Run(List({"run"}) + QStringList{Show("")});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Errors().contains(Text("desk: Script: no")));
}

TEST_F(CommandLine, RunTellsASetupThatTheDeviceDoesNotTakeAndGoesOn) {
    host.Run(List({"run"}) +
             QStringList{host.File(Text("setup.json"), R"({"devices":[{"name":"desk","setup":"bad"}]})")});
    EXPECT_EQ(host.ExitCode(), 0);
    EXPECT_TRUE(host.Errors().endsWith(Text(
        "setup.json: devices[0].setup: the device does not take its setup (code 22) and begins with a new one\n")));
}

TEST_F(CommandLine, SetupKeepsWhatIsStoredWhereTheModuleGivesNone) {
    const QByteArray show = R"({"devices":[{"name":"desk","setup":"too large to give"}]})";
    const QString file = host.File(Text("setup.json"), show);
    host.Run(List({"setup"}) + QStringList{file});
    Fails(4, "desk: the module does not give the setup, so it is left as it was");
    QFile after(file);
    ASSERT_TRUE(after.open(QIODevice::ReadOnly));
    EXPECT_EQ(after.readAll().toStdString(), show.toStdString());
}

TEST_F(CommandLine, LoadsAScriptThatStandsInTheShowFile) {
    const QString show =
        host.File(Text("text.json"),
                  R"({"devices":[{"name":"desk","scriptText":"function hi say hi"}],"steps":[)" + Step("hi") + "]}");
    host.Run(List({"run"}) + QStringList{show});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("| hi")));
}

TEST_F(CommandLine, HelpNamesEveryCommandWithExamples) {
    host.Run(List({"--help"}));
    EXPECT_EQ(host.ExitCode(), 0);
    for (const char* command :
         {"run", "exec", "check", "send", "definition", "variables", "setup", "store", "update"}) {
        EXPECT_TRUE(host.Output().contains(Text("  ") + Text(command))) << command;
        StageHostProcess one;
        one.Run({Text(command), Text("--help")});
        EXPECT_EQ(one.ExitCode(), 0);
        EXPECT_TRUE(one.Output().contains(Text("Examples"))) << command;
        EXPECT_TRUE(one.Output().contains(Text("--timeout"))) << command;
        const QString text = one.Output();
        one.Run({Text("help"), Text(command)});
        EXPECT_EQ(one.Output(), text);
    }
    host.Run(List({"--version"}));
    EXPECT_EQ(host.ExitCode(), 0);
    EXPECT_TRUE(host.Output().startsWith(Text("stagehost ")));
}

TEST_F(CommandLine, RefusesAtOnceWhatIsNoFile) {
    const QString pipe = host.Folder() + Text("/pipe.json");
    ASSERT_EQ(mkfifo(pipe.toLocal8Bit().constData(), 0600), 0);
    for (const QStringList& words : {QStringList{Text("run"), pipe}, QStringList{Text("exec"), pipe, Text("f")},
                                     QStringList{Text("check"), pipe}, QStringList{Text("check"), Text("/dev/zero")},
                                     QStringList{Text("watch"), Text("/dev/zero")}, QStringList{Text("setup"), pipe}}) {
        SCOPED_TRACE(words.join(QLatin1Char(' ')).toStdString());
        host.Run(words);
        Fails(2, " is no regular file");
        EXPECT_LT(host.Milliseconds(), host.Soon(kSoon * 5));
    }
    host.Run(List({"--log-file", "/dev/full", "exec"}) + QStringList{script, Text("hello")});
    Fails(2, "cannot write the log /dev/full: it is no regular file");
}

TEST_F(CommandLine, AResultThatCouldNotBeWrittenIsToldAndNoSuccess) {
    const QString driver = host.File(Text("driver.js"), "({})");
    for (const char* output : {">/dev/full", ">&-"}) {
        for (const char* words :
             {"--help", "exec \"$1\" hello", "--json exec \"$1\" hello", "check \"$3\"", "check --json \"$3\""}) {
            SCOPED_TRACE(std::string(words) + output);
            QProcess shell;
            shell.start(Text("/bin/sh"),
                        {Text("-c"), Text("\"$0\" --module \"$2\" ") + Text(words) + Text(output),
                         Text(STAGEHOST_BIN "/stagehost"), script, Text(STAGEHOST_BIN "/fakemodule.kxp6"), driver});
            ASSERT_TRUE(shell.waitForFinished(60000));
            EXPECT_EQ(shell.exitCode(), 2);
            EXPECT_EQ(shell.readAllStandardError().count("the output cannot be written: "), 1);
        }
    }
}

TEST_F(CommandLine, TellsItsExitCodesAsTheyStandInTheirTable) {
    host.Run(List({"--help"}));
    EXPECT_TRUE(host.Output().contains(Text("\nExit codes\n  0  all went well\n  1  the script failed, ")));
    QFile manual(Text(STAGEHOST_ROOT "/docs/stagehost.md"));
    ASSERT_TRUE(manual.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(manual.readAll());
    for (const QString& line : host.Output().section(Text("\nExit codes\n"), 1).split(QLatin1Char('\n'))) {
        if (!line.startsWith(Text("  ")))
            continue;
        EXPECT_TRUE(text.contains(Text("| %1 | %2").arg(line.mid(2, 1), line.mid(5)))) << line.toStdString();
    }
}
