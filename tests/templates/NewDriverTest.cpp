#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>

#include "StageHostProcess.h"

// What "stagehost new" lays out, as its user meets it. Runs in a network of its own, since one test has a port.

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

QString Path(const QString& name) {
    return QDir::current().filePath(name);
}

QByteArray Content(const QString& name) {
    QFile file(Path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A working folder of the test's own, and the program.
class NewDriver : public testing::Test {
protected:
    NewDriver() { host.SetWorkingFolder(host.Folder()); }

    void Make(const char* kind, const char* name) { host.Run({Text("new"), Text(kind), Text(name)}); }
    /// Waits in a show that is watched until its driver is online.
    bool IsOnline() {
        host.Say("wait demo.Online yes 60000");
        host.Say("get demo.Connection");
        return host.WaitForOutput("online");
    }
    /// The show's peer becomes a program, which no step can call.
    void RunInstead(const QStringList& words) {
        const QByteArray run = "\"run\": [\"" + words.join(Text("\", \"")).toUtf8() + "\"]";
        host.File(Text("demo/show.json"), Content(In("demo/show.json"))
                                              .replace("\"script\": \"fake.js\"", run)
                                              .replace("\"call\": \"turn\", \"args\": [70]", "\"do\": \"stall\""));
    }
    QString In(const char* name) const { return host.Folder() + QLatin1Char('/') + Text(name); }

    StageHostProcess host;
};

class EachTemplate : public NewDriver, public testing::WithParamInterface<const char*> {};

} // namespace

TEST_P(EachTemplate, PlaysAtOnceAndLeavesNothingBehind) {
    Make(GetParam(), "demo");
    ASSERT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    const QStringList laidOut = QDir(In("demo")).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System);
    host.Run({Text("run"), Text("demo/show.json")});
    EXPECT_EQ(host.ExitCode(), 0) << host.Output().toStdString() << host.Errors().toStdString();
    for (const QString& line : host.Errors().split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        EXPECT_TRUE(line.contains(Text("INFO     connection to "))) << line.toStdString();
    EXPECT_EQ(QDir(In("demo")).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System), laidOut);
}

TEST_P(EachTemplate, HasNothingThatCheckNotes) {
    Make(GetParam(), "demo");
    for (const QString& script : QDir(In("demo")).entryList({Text("*.js")})) {
        if (script == Text("connection.js"))
            continue; // goes in front of the driver, and is checked with it
        if (script == Text("fake.js") && GetParam() != std::string("logic"))
            continue; // a counterpart is no driver
        host.Run({Text("check"), Text("--strict"), Text("demo/") + script});
        EXPECT_EQ(host.ExitCode(), 0) << host.Output().toStdString() << host.Errors().toStdString();
        EXPECT_FALSE(host.Output().contains(Text("Notes"))) << host.Output().toStdString();
    }
}

TEST_P(EachTemplate, SeveralOfAKindAreTestedSideBySide) {
    for (const char* name : {"one", "two", "three"})
        Make(GetParam(), name);
    host.Run({Text("test"), Text("--jobs"), Text("3")});
    EXPECT_EQ(host.ExitCode(), 0) << host.Output().toStdString() << host.Errors().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("3 of 3 tests went well"))) << host.Output().toStdString();
}

INSTANTIATE_TEST_SUITE_P(NewDriver, EachTemplate, testing::Values("tcp", "udp", "http", "serial", "logic"),
                         [](const auto& made) { return std::string(made.param); });

TEST_F(NewDriver, SaysWhatItHasMadeAndWhatToTypeNext) {
    Make("tcp", "amplifier");
    EXPECT_TRUE(host.Output().contains(Text("amplifier/amplifier.js"))) << host.Output().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("  stagehost run amplifier/show.json"))) << host.Output().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("  stagehost test amplifier "))) << host.Output().toStdString();
    EXPECT_FALSE(QFile::exists(Path(Text("amplifier"))));
    EXPECT_TRUE(QFile::exists(In("amplifier/fake.js")));
}

TEST_F(NewDriver, GivesProgramsTheListOfItsFiles) {
    host.Run({Text("--json"), Text("new"), Text("udp"), Text("demo")});
    EXPECT_EQ(host.Json().value(Text("ok")).toBool(), true);
    EXPECT_EQ(host.Json().value(Text("files")).toArray().first().toString(), Text("demo/demo.js"));
}

TEST_F(NewDriver, OverwritesNothing) {
    Make("logic", "demo");
    const QByteArray before = Content(In("demo/demo.js"));
    Make("tcp", "demo");
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_EQ(host.Errors().toStdString(), "demo is there already; nothing is overwritten\n");
    EXPECT_EQ(Content(In("demo/demo.js")), before);
    EXPECT_FALSE(before.isEmpty());
}

TEST_F(NewDriver, TakesOnlyNamesThatAreFilesAndDevicesEverywhere) {
    for (const char* name : {"", "../x", "a b", "1st", "a/b", ".", "caf\xC3\xA9", "a.b"}) {
        Make("tcp", name);
        EXPECT_EQ(host.ExitCode(), 2) << name;
        EXPECT_TRUE(host.Errors().contains(Text("a name begins with a letter"))) << host.Errors().toStdString();
    }
    EXPECT_EQ(QDir(host.Folder()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList());
}

TEST_F(NewDriver, SaysWhichKindsThereAre) {
    Make("tpc", "demo");
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_EQ(host.Errors().toStdString(),
              "there is no \"tpc\" to begin with; there are tcp, udp, http, serial, logic\n");
}

TEST_F(NewDriver, TellsThatTheFolderCannotBeMade) {
    const QString file = host.File(Text("file"), "");
    host.SetWorkingFolder(QStringLiteral("/proc"));
    Make("tcp", "demo");
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_EQ(host.Errors().toStdString(), "cannot make the folder demo\n");
}

TEST_F(NewDriver, ADriverWhosePeerDiesSaysSoAndComesBack) {
    Make("tcp", "demo");
    const QString program = QStringLiteral(STAGEHOST_BIN "/stagehost");
    const QStringList words{Text("counterpart"), Text("--json"), Text("--listen"), Text("4001"), Text("fake.js")};
    RunInstead(QStringList(program) + words);
    host.Begin({Text("watch"), Text("demo/show.json"), Text("demo.Connection")});
    ASSERT_TRUE(IsOnline());
    const QString peer = host.Child();
    ASSERT_FALSE(peer.isEmpty());
    ASSERT_EQ(QProcess::execute(Text("/bin/kill"), {Text("-KILL"), peer}), 0);
    EXPECT_TRUE(host.WaitForErrors("peer fake demo: was ended by a signal"));
    EXPECT_TRUE(host.WaitForOutput("demo.Connection = offline: "));
    QProcess another;
    another.setWorkingDirectory(In("demo"));
    another.start(program, words);
    host.Say("wait demo.Online yes 60000");
    host.Say("send demo \"Set power\" power=on");
    EXPECT_TRUE(host.WaitForOutput("OK"));
    host.Say("quit");
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    another.closeWriteChannel();
    EXPECT_TRUE(another.waitForFinished());
}

TEST_F(NewDriver, APeerThatCannotBeStartedEndsTheShowWithItsName) {
    Make("tcp", "demo");
    RunInstead({Text("no-such-program")});
    host.Run({Text("run"), Text("demo/show.json")});
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_TRUE(host.Errors().startsWith(Text("peer fake demo: cannot start no-such-program: ")))
        << host.Errors().toStdString();
}

TEST_F(NewDriver, APeerEndsWithTheShowAlsoWhenThatIsEndedByForce) {
    Make("serial", "demo");
    host.Begin({Text("watch"), Text("demo/show.json")});
    ASSERT_TRUE(IsOnline());
    const QString peer = host.Child();
    ASSERT_FALSE(peer.isEmpty());
    host.Kill();
    QProcess wait; // a process that is gone has no state any more
    wait.start(Text("/bin/sh"), {Text("-c"), Text("while [ -e /proc/") + peer + Text(" ]; do sleep 0.05; done")});
    EXPECT_TRUE(wait.waitForFinished(60000));
}
