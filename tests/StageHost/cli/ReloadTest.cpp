#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSaveFile>

#include "StageHostProcess.h"

/// Scripts that are saved while a show runs, with the module beside the program.

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

/// A driver that keeps a timer and two sockets busy.
QByteArray Edition(int number, const QByteArray& more = {}) {
    const QByteArray n = QByteArray::number(number);
    return "({ Setup: { host: 'here', port: 5 }, Device: { Level: 0, Edition: 0, Ticks: 0 },\n"
           "   _mStart: function () { var s = this;\n"
           "       QCalverin.SetInterval(function () { s.Device.Ticks = s.Device.Ticks + 1; }, 20);\n"
           "       this._udp = QCalverin.CreateSocket('udp4'); this._udp.bind(0);\n"
           "       this._tcp = QCalverin.CreateSocket(); this._tcp.connect(9, '127.0.0.1');\n"
           "       this.Device.Edition = " +
           n +
           "; },\n"
           "   Tell: function () { return ['edition', " +
           n + ", this.Setup.host, this.Setup.port, this.Device.Level].join(' '); }\n" + more + "})\n";
}

class Reloading : public testing::Test {
protected:
    void Save(const QByteArray& text, const char* name = "driver.js") { host.File(Text(name), text); }

    void Watch(const QStringList& more = {}) {
        host.Begin(
            QStringList{Text("watch"), host.Folder() + Text("/driver.js"), Text("script.Edition"), Text("--reload")} +
            more);
        ASSERT_TRUE(host.WaitForErrors("runs."));
    }

    /// Waits until an edition is in force.
    void ThenItRuns(int edition) {
        const QByteArray number = QByteArray::number(edition);
        host.Say("wait script.Edition " + number + " 60000");
        host.Say("send script Tell");
        EXPECT_TRUE(host.WaitForOutput("edition " + number + " ")) << host.Errors().toStdString();
    }

    void End() {
        host.Say("quit");
        host.Finish();
    }

    StageHostProcess host;
};

TEST_F(Reloading, RunsWhatIsSavedWithSettingsAndValuesKept) {
    Save(Edition(1));
    Watch({Text("--set"), Text("port=7")});
    host.Say("set script.Level 42");
    ThenItRuns(1);
    Save(Edition(2, ", More: function () { return 'there is more'; }"));
    ThenItRuns(2);
    EXPECT_TRUE(host.Output().contains(Text("edition 2 here 7 42"))) << host.Output().toStdString();
    host.Say("send script More");
    EXPECT_TRUE(host.WaitForOutput("there is more")) << host.Errors().toStdString();
    End();
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_EQ(host.Errors().count(Text("reloaded script (driver.js)\n")), 1) << host.Errors().toStdString();
}

TEST_F(Reloading, SeesEveryWayOfSaving) {
    Save(Edition(1));
    const QString path = host.Folder() + Text("/driver.js");
    Watch();
    ThenItRuns(1);
    QSaveFile replaced(path);
    ASSERT_TRUE(replaced.open(QIODevice::WriteOnly) && replaced.write(Edition(2)) > 0 && replaced.commit());
    ThenItRuns(2);
    ASSERT_TRUE(QFile::rename(path, path + Text("~")));
    Save(Edition(3));
    ThenItRuns(3);
    ASSERT_TRUE(QFile::remove(path));
    Save(Edition(4));
    ThenItRuns(4);
    QFile inPlace(path);
    ASSERT_TRUE(inPlace.open(QIODevice::WriteOnly | QIODevice::Truncate) && inPlace.flush());
    inPlace.write(Edition(5));
    inPlace.close();
    ThenItRuns(5);
    End();
    EXPECT_FALSE(host.Errors().contains(Text("goes on"))) << host.Errors().toStdString();
}

TEST_F(Reloading, LeavesTheOldOneRunningWhenTheNewOneDoesNotLoad) {
    Save(Edition(1));
    Watch();
    ThenItRuns(1);
    Save("({\n a b })");
    ASSERT_TRUE(host.WaitForErrors("goes on with the edition that it has"));
    EXPECT_TRUE(host.Errors().contains(Text("driver.js:2:4: SyntaxError"))) << host.Errors().toStdString();
    ThenItRuns(1);
    Save(Edition(2).replace("var s = this;", "throw new Error('no start');"));
    ASSERT_TRUE(host.WaitForErrors("script: Script: no start"));
    ThenItRuns(1);
    Save(Edition(3).replace("port: 5", "port: 'x'"));
    ThenItRuns(3);
    ASSERT_TRUE(QFile::remove(host.Folder() + Text("/driver.js")));
    ASSERT_TRUE(host.WaitForErrors("driver.js: No such file")) << host.Errors().toStdString();
    ThenItRuns(3);
    End();
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
}

TEST_F(Reloading, RefusesAnEditionThatTheGivenSettingsDoNotFit) {
    Save(Edition(1));
    Watch({Text("--set"), Text("port=700")});
    ThenItRuns(1);
    Save(Edition(2).replace("({ Setup", "({ Info: { Setup: { port: { MaxValue: 99 } } }, Setup"));
    ASSERT_TRUE(host.WaitForErrors("goes on with the edition that it has"));
    EXPECT_TRUE(host.Errors().contains(Text("--set port=700: takes at most 99, not 700")))
        << host.Errors().toStdString();
    ThenItRuns(1);
    End();
}

TEST_F(Reloading, LooksAtTheFilesInFrontOfTheDriverToo) {
    QDir(host.Folder()).mkdir(Text("lib"));
    Save("var word = 1;\n", "lib/part.js");
    Save("// @include lib/part.js\n" +
         Edition(1, ", Say: function () { return 'word ' + word; }").replace("Edition = 1", "Edition = word"));
    Watch();
    Save("var word = 2;\n", "lib/part.js");
    host.Say("wait script.Edition 2 60000");
    host.Say("send script Say");
    EXPECT_TRUE(host.WaitForOutput("word 2")) << host.Errors().toStdString();
    Save("var word = ;\n", "lib/part.js");
    ASSERT_TRUE(host.WaitForErrors("lib/part.js:1:12: SyntaxError")) << host.Errors().toStdString();
    Save("// @include late.js\nvar word = late;\n", "lib/part.js");
    ASSERT_TRUE(host.WaitForErrors("\"lib/late.js\" is not there")) << host.Errors().toStdString();
    Save("var late = 3;\n", "lib/late.js");
    host.Say("wait script.Edition 3 60000");
    host.Say("send script Say");
    EXPECT_TRUE(host.WaitForOutput("word 3")) << host.Errors().toStdString();
    End();
}

TEST_F(Reloading, AWaitLooksAtTheVariableOfTheEditionOfNowByItsType) {
    Save("({ Device: { Edition: 1, Mode: 'none' } })");
    Watch();
    host.Say("wait script.Mode>=1 60000");
    host.Say("get script.Edition");
    Save("({ Info: { Variables: { Mode: { Type: 'Enum', Items: ['off', 'on'] } } },\n"
         "   Device: { Edition: 2, Mode: 'off' }, _mStart: function () { this.Device.Mode = 'on'; } })");
    EXPECT_TRUE(host.WaitForErrors("reloaded")) << host.Errors().toStdString();
    EXPECT_TRUE(host.WaitForOutput("\n2\n")) << host.Output().toStdString() << host.Errors().toStdString();
    End();
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
}

TEST_F(Reloading, ReplacesAScriptThatNeverEnds) {
    Save(Edition(1, ", Hang: function () { while (true) {} }"));
    Watch({Text("--timeout"), Text("3000")});
    host.Say("set script.Level 9");
    ThenItRuns(1);
    host.Say("send script Hang");
    Save(Edition(2));
    ThenItRuns(2);
    EXPECT_TRUE(host.Output().contains(Text("edition 2 here 5 9"))) << host.Output().toStdString();
    End();
    EXPECT_EQ(host.ExitCode(), 3) << "the command that hung";
}

TEST_F(Reloading, GoesOnInANewDeviceWhenTheOldEditionNeverComesBackFromItsStop) {
    Save(Edition(1, ", _mStop: function () { while (true) ; }"));
    Watch({Text("--timeout"), Text("3000")});
    ThenItRuns(1);
    Save(Edition(2));
    EXPECT_TRUE(host.WaitForErrors("reloaded script (driver.js)")) << host.Errors().toStdString();
    EXPECT_TRUE(host.Errors().contains(Text("script: its script has not come back from its stop")))
        << host.Errors().toStdString();
    host.Say("send script Tell");
    EXPECT_TRUE(host.WaitForOutput("edition 2 here")) << host.Errors().toStdString();
    End();
}

TEST_F(Reloading, GoesOnWithTheOldEditionWhenTheNewOneNeverComesBackFromItsStart) {
    Save(Edition(1));
    Watch({Text("--timeout"), Text("3000")});
    ThenItRuns(1);
    host.Say("set script.Level 9");
    Save("({ Device: { Edition: 2 }, _mStart: function () { while (true) ; } })");
    EXPECT_TRUE(host.WaitForErrors("script goes on with the edition that it has")) << host.Errors().toStdString();
    host.Say("send script Tell");
    EXPECT_TRUE(host.WaitForOutput("edition 1 here 5 9"))
        << "its values are kept over an edition without them: " << host.Output().toStdString()
        << host.Errors().toStdString();
    End();
}

TEST_F(Reloading, RunsADeviceThatHoldsItsDriverInTheShowAndOneThatLoadsItsScript) {
    Save(Edition(1));
    const QString show = host.File(Text("show.json"), R"({ "devices": [
        { "name": "front", "driver": "driver.js", "settings": { "host": "file" } },
        { "name": "late", "script": "driver.js", "settings": { "host": "there" } }] })");
    host.Run({Text("setup"), show, Text("front")});
    ASSERT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    const QByteArray before = [&] {
        QFile file(show);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }();
    host.Begin({Text("watch"), show, Text("front.Edition"), Text("--reload")});
    ASSERT_TRUE(host.WaitForErrors("runs."));
    Save(Edition(2));
    ASSERT_TRUE(host.WaitForErrors("reloaded front (driver.js)")) << host.Errors().toStdString();
    ASSERT_TRUE(host.WaitForErrors("reloaded late (driver.js)")) << host.Errors().toStdString();
    host.Say("send front Tell");
    EXPECT_TRUE(host.WaitForOutput("edition 2 file")) << host.Errors().toStdString();
    host.Say("send late \"Execute Function With Params\" \"Script Function Name=Tell\"");
    EXPECT_TRUE(host.WaitForOutput("edition 2 there")) << host.Errors().toStdString();
    End();
    QFile file(show);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), before) << "a run writes nothing";
}

/// What the process holds.
struct Held {
    int threads = 0;
    int descriptors = 0;
    int kilobytes = 0;
};

TEST_F(Reloading, HundredTimesKeepsThreadsDescriptorsAndMemory) {
    Save(Edition(1));
    Watch();
    const auto held = [this] {
        QFile status(Text("/proc/%1/status").arg(host.ProcessId()));
        EXPECT_TRUE(status.open(QIODevice::ReadOnly));
        Held now;
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith("Threads:"))
                now.threads = line.mid(8).trimmed().toInt();
            if (line.startsWith("VmRSS:"))
                now.kilobytes = line.mid(6).trimmed().split(' ').first().toInt();
        }
        now.descriptors = QDir(Text("/proc/%1/fd").arg(host.ProcessId())).entryList(QDir::Files | QDir::System).size();
        return now;
    };
    Held middle;
    for (int edition = 2; edition <= 101; ++edition) {
        Save(Edition(edition));
        ThenItRuns(edition);
        ASSERT_FALSE(HasFailure());
        if (edition == 41)
            middle = held();
    }
    const Held end = held();
    End();
    EXPECT_EQ(host.Errors().count(Text("reloaded script")), 100);
    EXPECT_LE(end.threads, middle.threads + 2) << "a thread of the pool may be on its way";
    EXPECT_LE(end.descriptors, middle.descriptors + 2);
    EXPECT_GT(middle.descriptors, 2);
    EXPECT_LE(end.kilobytes, middle.kilobytes + 8192) << "of 60 reloads";
}

} // namespace
