#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>

#include "StageHostProcess.h"

/// "stagehost check", which needs no module: a fake one stands beside it and is not asked.

namespace {

constexpr qint64 kAtOnce = 4000; // ms

QString Word(const char* text) {
    return QString::fromUtf8(text);
}

QStringList Words(std::initializer_list<const char*> words) {
    QStringList list;
    for (const char* word : words)
        list += Word(word);
    return list;
}

class CheckCommand : public testing::Test {
protected:
    StageHostProcess host{Word(STAGEHOST_BIN "/fakemodule.kxp6")};
};

} // namespace

TEST_F(CheckCommand, TellsWhatAScriptPublishesWithoutAnyModule) {
    const QString driver = host.File(Word("driver.js"), "({ Info: { Title: 'Lamp' }, Device: { Level: 5 },\n"
                                                        "   Setup: { port: 8000 },\n"
                                                        "   On: function (level) { return this.Setup.port; } })");
    host.SetMood("entry-fails");
    host.Run(Words({"check"}) + QStringList{driver});
    EXPECT_EQ(host.ExitCode(), 0);
    EXPECT_EQ(host.Output().toStdString(), driver.toStdString() + ": ok\n"
                                                                  "\nInfo\n"
                                                                  "  title  Lamp\n"
                                                                  "\nCommands\n"
                                                                  "  4  On\n"
                                                                  "       out  Result  String\n"
                                                                  "       in   level   String\n"
                                                                  "\nVariables\n"
                                                                  "  Level  Integer  5\n"
                                                                  "\nSettings\n"
                                                                  "  port  Integer  SpinBox  8000\n");
    EXPECT_EQ(host.Errors().toStdString(), "");
}

TEST_F(CheckCommand, NotesWhatWillHurtWhichCountsWhenItIsStrict) {
    const QString driver = host.File(Word("driver.js"), "({ On: function () {\nQCalverin.SetValeu('a', 1); } })");
    const QString note =
        Word("\nNotes\n") + driver +
        Word(":2: note: QCalverin.SetValeu does not exist, and the call will throw: correct the name, it may "
             "be meant as SetValue [unknown-call]\n");
    host.Run(Words({"check"}) + QStringList{driver});
    EXPECT_EQ(host.ExitCode(), 0);
    EXPECT_TRUE(host.Output().endsWith(note)) << host.Output().toStdString();
    host.Run(Words({"check", "--strict"}) + QStringList{driver});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Output().startsWith(driver + Word(": 1 note counts as a failure\n")));
    host.Run(Words({"--json", "--strict", "check"}) + QStringList{driver});
    EXPECT_EQ(host.ExitCode(), 1);
    const QJsonObject first = host.Json().value(Word("notes")).toArray().at(0).toObject();
    EXPECT_EQ(first.value(Word("code")).toString(), Word("unknown-call"));
    EXPECT_EQ(first.value(Word("line")).toInt(), 2);
}

TEST_F(CheckCommand, TellsTheErrorWithItsLineAndEndsAnEndlessScript) {
    const QString bad = host.File(Word("bad.js"), "var a;\nvar b = ;\n");
    host.Run(Words({"check"}) + QStringList{bad});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_EQ(host.Output(), bad + Word(":2:9: SyntaxError: unexpected \";\"\n    | var b = ;\n    |         ^\n"));
    const QString loop = host.File(Word("loop.js"), "var n = 0;\nwhile (true) { ++n; }");
    host.Run(Words({"check", "--timeout", "300"}) + QStringList{loop});
    EXPECT_EQ(host.ExitCode(), 3);
    EXPECT_EQ(host.Output().toStdString(), "");
    EXPECT_TRUE(host.Errors().contains(Word("no answer within 300 ms"))) << host.Errors().toStdString();
    EXPECT_TRUE(host.Errors().contains(loop + Word(":2: stopped in the top level, which did not come back\n")))
        << host.Errors().toStdString();
    EXPECT_LT(host.Milliseconds(), kAtOnce);
}

TEST_F(CheckCommand, GivesJson) {
    const QString driver = host.File(Word("driver.js"), "({ On: function (level) {} })");
    host.Run(Words({"check", "--json"}) + QStringList{driver});
    EXPECT_EQ(host.ExitCode(), 0);
    EXPECT_TRUE(host.Json().value(Word("error")).isNull());
    const QJsonObject command = host.Json().value(Word("commands")).toArray().at(0).toObject();
    EXPECT_EQ(command.value(Word("function")).toString(), Word("On"));
    const QString bad = host.File(Word("bad.js"), "\n\nthrow new Error('top');");
    host.Run(Words({"check", "--json"}) + QStringList{bad});
    EXPECT_EQ(host.ExitCode(), 1);
    const QJsonObject error = host.Json().value(Word("error")).toObject();
    EXPECT_EQ(error.value(Word("line")).toInt(), 3);
    EXPECT_EQ(error.value(Word("text")).toString(), Word("Error: top"));
    const QString loop = host.File(Word("loop.js"), "while (true) {}");
    host.Run(Words({"check", "--json", "--timeout", "300"}) + QStringList{loop});
    EXPECT_EQ(host.ExitCode(), 3);
    EXPECT_FALSE(host.Json().value(Word("error")).isNull());
}

TEST_F(CheckCommand, EndsItsOwnProgramWhenItIsInterrupted) {
    host.Begin(Words({"check", "--timeout", "50000"}) +
               QStringList{host.File(Word("loop.js"), "print('here'); while (true) {}")});
    ASSERT_TRUE(host.WaitForErrors("here"));
    const QString child = host.Child();
    ASSERT_FALSE(child.isEmpty());
    host.Interrupt();
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 3);
    EXPECT_TRUE(host.Errors().contains(Word("interrupted"))) << host.Errors().toStdString();
    EXPECT_FALSE(QFile::exists(Word("/proc/") + child));
}

TEST_F(CheckCommand, DoesNotAccuseTheScriptWhenTheReaderOfItsOutputHasGone) {
    QProcess shell;
    shell.start(Word("/bin/sh"), {Word("-c"),
                                  Word("mkfifo \"$2\"\n"
                                       "( read go <\"$2\"; \"$0\" check \"$1\"; echo \"code $?\" >&2 ) |\n"
                                       "( exec <&-; echo go >\"$2\" )"),
                                  Word(STAGEHOST_BIN "/stagehost"), host.File(Word("good.js"), "({})"),
                                  host.Folder() + Word("/reader-has-gone")});
    ASSERT_TRUE(shell.waitForFinished(60000));
    EXPECT_EQ(shell.readAllStandardError().toStdString(), "code 141\n"); // as any program that SIGPIPE ends
}

TEST_F(CheckCommand, SurvivesAScriptThatBringsItsEngineDown) {
    const QString bomb = host.File(Word("bomb.js"), "var s = ''; for (var i = 0; i < 20000; ++i) s += '(';"
                                                    "for (i = 0; i < 20000; ++i) s += ')'; new RegExp(s);");
    host.Run(Words({"check"}) + QStringList{bomb});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_EQ(host.Output().toStdString(), "");
    EXPECT_FALSE(host.Errors().isEmpty());
}
