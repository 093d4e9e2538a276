#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QProcess>

#include "StageHostProcess.h"

/// Steps and waits with the real module: what they compare, what they tell before and behind, and what others read of
/// them.

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

class Steps : public testing::Test {
protected:
    Steps() {
        host.File(
            Text("lamp.js"),
            "({ Info: { Variables: { Level: { MinValue: 0, MaxValue: 1, Precision: 3 },\n"
            "                        Online: { Type: 'Enum', Items: ['no', 'yes'] } } },\n"
            "   Device: { Level: 0.5, Online: 'no', Note: '0.50' },\n"
            "   Connect: function () { var d = this.Device; QCalverin.SetTimeout(function () { d.Online = 'yes'; }, "
            "50); },\n"
            "   Fade: function (zone, level) { this.Device.Level = Number(level); return zone + ' to ' + level; },\n"
            "   Late: function (text) { var id = QCalverin.PostponeResult();\n"
            "                           QCalverin.SetTimeout(function () { QCalverin.SetResult(id, text); }, 20); } "
            "})");
    }

    /// A show with these steps.
    QString Show(const QByteArray& steps) {
        return host.File(Text("show.json"), R"({"name":"Lamps","devices":[{"name":"lamp","driver":"lamp.js"}],
            "variables":[{"name":"Start","type":"Time","value":"10:00:00/00"},{"name":"Day","type":"Date","value":"24/12/2026"},
                         {"name":"Rate","type":"Real","precision":3,"value":0.5},{"name":"Word","value":"10"}],
            "tasks":[{"name":"Loop","lines":[{"at":10,"label":"in","set":{"Word":"looped"}},{"at":86400000}]}],
            "screens":[{"name":"Panel","pages":["one","two"]}],
            "steps":[)" + steps + "]}");
    }

    void Play(const QByteArray& steps, const QStringList& options = {}) {
        host.Run(options + QStringList{Text("run"), Show(steps)});
    }

    static QByteArray Until(const char* condition, int within = 20000) {
        return "{\"wait\":{\"until\":\"" + QByteArray(condition) + "\",\"within\":" + QByteArray::number(within) + "}}";
    }

    StageHostProcess host;
};

TEST_F(Steps, WaitForWhatHoldsByTheType) {
    for (const char* condition :
         {"Rate = 0.5",         "Rate = 0.500",      "Rate != 0.6",           "Rate >= 0.5",
          "Rate < 0.51",        "Rate > -1",         "lamp.Level = .5",       "lamp.Online = no",
          "lamp.Online = 0",    "lamp.Online < yes", "Start = 10:00:00/00",   "Start < 10:00:01/00",
          "Day = 2026-12-24",   "Day > 23/12/2026",  "lamp.Note = 0.50",      "lamp.Note != 0.5",
          "Word ~ ^1[0-9]$",    "Word >= 9.5",       "Loop.Status = Stopped", "Loop.Line <= 0",
          "Panel.Open = false", "Panel.Page = 1",    "Panel.PageName ~ ne$",  "lamp.Running = true"}) {
        Play(Until(condition));
        EXPECT_EQ(host.ExitCode(), 0) << condition << ": " << host.Errors().toStdString();
    }
    for (const char* condition : {"Rate != 0.500", "Rate > 0.5", "lamp.Online = yes", "lamp.Note = 0.5", "Word ~ ^2",
                                  "Loop.Status = Running", "Start > 10:00:00/00"}) {
        Play(Until(condition, 50));
        EXPECT_EQ(host.ExitCode(), 3) << condition;
        EXPECT_TRUE(host.Errors().contains(Text("after 50 ms"))) << host.Errors().toStdString();
    }
}

TEST_F(Steps, AreWokenByWhatComesLater) {
    Play(R"({"device":"lamp","command":"Connect"},)" + Until("lamp.Online = yes") + R"(,{"task":"Loop"},)" +
         Until("Loop.Label = in") + "," + Until("Loop.Time > 20") + R"(,{"pause":30})");
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("\n6. pause of 30 ms\n"))) << host.Output().toStdString();
}

TEST_F(Steps, ALateFailureWithoutATextFailsItsStep) {
    Play(R"({"device":"lamp","command":"Late","params":{"text":"error: "}})");
    EXPECT_EQ(host.ExitCode(), 1) << host.Output().toStdString();
    EXPECT_TRUE(host.Errors().contains(Text("has failed without a text"))) << host.Errors().toStdString();
    Play(R"({"device":"lamp","command":"Late","params":{"text":"error: "},"expect":{"result":"error: "}})");
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
}

TEST_F(Steps, OfAShowThatCannotBeReadAreReportedInEachForm) {
    const QString show = host.File(Text("bad.json"), R"({"devices": 3})");
    const QString file = host.Folder() + Text("/bad.xml");
    host.Run({Text("run"), Text("--tap"), Text("--junit"), file, show});
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_TRUE(host.Output().startsWith(Text("TAP version 14\n1..0\nBail out! "))) << host.Output().toStdString();
    QFile junit(file);
    ASSERT_TRUE(junit.open(QIODevice::ReadOnly));
    EXPECT_TRUE(junit.readAll().contains("devices: expected a list"));
}

TEST_F(Steps, AScriptOrAShowIsNoLog) {
    const QString show = Show(R"({"pause":1})");
    for (const QString& file : {show, QString(host.Folder() + Text("/lamp.js"))}) {
        const auto content = [&] {
            QFile one(file);
            return one.open(QIODevice::ReadOnly) ? one.readAll() : QByteArray();
        };
        const QByteArray before = content();
        host.Run({Text("run"), Text("--log-file"), file, show});
        EXPECT_EQ(host.ExitCode(), 2);
        EXPECT_TRUE(host.Errors().contains(Text("it is there, and is no log"))) << host.Errors().toStdString();
        EXPECT_EQ(content(), before);
    }
    const QString log = host.Folder() + Text("/log");
    for (int run = 0; run < 2; ++run) {
        host.Run({Text("run"), Text("--log-file"), log, show});
        EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    }
}

TEST_F(Steps, ThatWaitForNothingThatCanBeAreRefused) {
    const std::pair<QByteArray, const char*> rows[] = {
        {Until("Rate"), "steps[0].wait.until: expected NAME=VALUE"},
        {Until("Word ~ ("), "steps[0].wait.until: \"(\" is no pattern"},
        {Until("Rat = 1"), "steps[0].wait.until: there is no variable \"Rat\""},
        {Until("Lop.Line = 1"), "steps[0].wait.until: there is no object \"Lop\""},
        {Until("Rate = quick"), "steps[0].wait.until: never is \"quick\""},
        {R"({"wait":{"until":"Rate = 1","variable":"Rate"}})", "steps[0].wait.until: stands alone"},
        {R"({"pause":0})", "steps[0].pause"},
        {Until("Loop.Nothing = 1"), "Loop has no property \"Nothing\"; there are: Status, Line"},
        {Until("Word < bright"), "Word < bright: only numbers, times, dates and items have an order"},
    };
    for (const auto& [step, told] : rows) {
        Play(step);
        EXPECT_EQ(host.ExitCode(), 2) << step.toStdString();
        EXPECT_TRUE(host.Errors().contains(Text(told))) << host.Errors().toStdString();
    }
}

TEST_F(Steps, ShowTheirHeadingBeforeTheyRun) {
    host.Begin({Text("run"), Show(Until("lamp.Online = yes"))});
    EXPECT_TRUE(host.WaitForOutput("\n1. wait until lamp.Online is yes\n"));
    host.Interrupt();
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 3);
    EXPECT_FALSE(host.Output().contains(Text("... "))) << "no ticking in a pipe";
    EXPECT_FALSE(host.Errors().contains(QChar(0x1B)));
}

TEST_F(Steps, ThatTakeLongShowTheSecondsOnATerminal) {
    QProcess terminal; // a pseudo-terminal, whose other end is copied to the output
    terminal.start(Text("socat"), {Text("-u"),
                                   Text("EXEC:") + Text(STAGEHOST_BIN "/stagehost run ") +
                                       Show(Until("lamp.Online = yes", 60000)) + Text(",pty,stderr"),
                                   Text("-")});
    ASSERT_TRUE(terminal.waitForStarted());
    QByteArray shown;
    while (!shown.contains("   ... ") && terminal.waitForReadyRead(60000))
        shown += terminal.readAllStandardOutput();
    EXPECT_TRUE(shown.contains("1. wait until lamp.Online is yes")) << shown.toStdString();
    EXPECT_TRUE(shown.contains("\r   ... 1 s") || shown.contains("\r   ... 2 s")) << shown.toStdString();
    terminal.terminate();
    EXPECT_TRUE(terminal.waitForFinished(60000));
}

TEST_F(Steps, HaveTheParametersOfACommandInItsOwnOrder) {
    Play(R"({"device":"lamp","command":"Fade","params":{"level":0.25,"zone":"stage"}})");
    EXPECT_TRUE(host.Output().contains(Text("\n1. Fade (stage, 0.25)\n"))) << host.Output().toStdString();
}

constexpr const char* kFailingSteps =
    R"({"pause":1},{"say":"Too late","device":"lamp","command":"Late","params":{"text":"error: no answer"}},{"pause":1})";

TEST_F(Steps, FailByAResultThatSaysSoAndTheShowEnds) {
    Play(kFailingSteps);
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Errors().contains(Text("step 2 (Too late): no answer\n"))) << host.Errors().toStdString();
    EXPECT_FALSE(host.Output().contains(Text("\n3. ")));
    Play(R"({"device":"lamp","command":"Late","params":{"text":"error: no answer"},"expect":{"error":"no answer"}},
            {"device":"lamp","command":"Late","params":{"text":"error: no answer"},"expect":{"result":"error: no answer"}},
            {"device":"lamp","command":"Late","params":{"text":"Error: is no mark"}})");
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
}

TEST_F(Steps, GoOnBehindAFailureWhenTheUserWantsSo) {
    Play(kFailingSteps, {Text("--keep-going")});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Output().contains(Text("\n3. pause of 1 ms\n"))) << host.Output().toStdString();
    EXPECT_TRUE(host.Output().endsWith(Text("\nThe show is over: 1 of 3 steps failed.\n")));
    Play(kFailingSteps, {Text("--keep-going"), Text("--json")});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_EQ(host.Json().value(Text("steps")).toArray().size(), 3);
}

TEST_F(Steps, GoOnBehindAWaitInVainWithTheDevicesThatThereAre) {
    Play(Until("lamp.Note = never", 50) + R"(,{"wait":{"until":"Word = never","within":50}},
            {"device":"lamp","command":"Fade","params":{"zone":"stage","level":"1"},"expect":{"result":"stage to 1"}},
            {"wait":{"until":"lamp.Level = 1"}})",
         {Text("--keep-going")});
    EXPECT_EQ(host.ExitCode(), 3) << host.Errors().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("   | stage to 1\n"))) << host.Output().toStdString();
    EXPECT_TRUE(host.Output().endsWith(Text("\nThe show is over: 2 of 4 steps failed.\n")))
        << host.Output().toStdString();
}

TEST_F(Steps, GoOnBehindACommandThatGivesNoAnswer) {
    host.File(Text("never.js"),
              "({ Never: function () { QCalverin.PostponeResult(); }, F: function () { return 'f'; } })");
    const QString show = host.File(Text("never.json"), R"({"devices":[{"name":"lamp","driver":"never.js"}],
        "steps":[{"device":"lamp","command":"Never"},{"device":"lamp","command":"F","expect":{"result":"f"}}]})");
    host.Run({Text("run"), Text("--keep-going"), Text("--timeout"), Text("5000"), show});
    EXPECT_EQ(host.ExitCode(), 3) << host.Errors().toStdString();
    EXPECT_TRUE(host.Output().endsWith(Text("\nThe show is over: 1 of 2 steps failed.\n")))
        << host.Output().toStdString() << host.Errors().toStdString();
}

TEST_F(Steps, AreToldAsTap) {
    Play(kFailingSteps, {Text("--tap")});
    EXPECT_EQ(host.ExitCode(), 1);
    const QStringList lines = host.Output().split(QLatin1Char('\n'));
    EXPECT_EQ(lines.mid(0, 3).join(QLatin1Char('|')), Text("TAP version 14|1..3|ok 1 - pause of 1 ms"));
    EXPECT_TRUE(host.Output().contains(Text("\nnot ok 2 - Too late\n  ---\n  duration_ms: ")))
        << host.Output().toStdString();
    EXPECT_TRUE(
        host.Output().contains(Text("\n  message: \"no answer\"\n  ...\nok 3 - pause of 1 ms # SKIP not played\n")));
    Play(R"({"say":"red \u001b[31m","pause":1})", {Text("--tap")});
    EXPECT_TRUE(host.Output().contains(Text("\nok 1 - red \\\\x1b[31m\n"))) << host.Output().toStdString();
    Play("", {Text("--tap"), Text("--json")});
    EXPECT_EQ(host.ExitCode(), 2);
}

TEST_F(Steps, AreKeptAsJUnitAlsoWhenTheShowDoesNotStartOrIsInterrupted) {
    const QString path = host.Folder() + Text("/steps.xml");
    const auto kept = [&] {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return QString::fromUtf8(file.readAll());
    };
    Play(kFailingSteps, {Text("--junit"), path});
    EXPECT_TRUE(kept().contains(Text("<testsuites tests=\"3\" failures=\"1\" errors=\"0\" skipped=\"1\"")))
        << kept().toStdString();
    EXPECT_TRUE(kept().contains(Text("<failure message=\"no answer\"")));
    host.File(Text("lamp.js"), "({ _mStart: function () { throw new Error('no lamp'); }, Late: function (text) {} })");
    Play(kFailingSteps, {Text("--junit"), path});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(kept().contains(Text("errors=\"1\" skipped=\"3\""))) << kept().toStdString();
    EXPECT_TRUE(kept().contains(Text("no lamp")));
    host.File(Text("lamp.js"), "({ Device: { Online: 0 } })");
    host.Begin({Text("--junit"), path, Text("run"), Show(Until("lamp.Online = 1") + R"(,{"pause":1})")});
    EXPECT_TRUE(host.WaitForOutput("\n1. wait"));
    EXPECT_TRUE(kept().contains(Text("the show has not come to its end"))) << kept().toStdString();
    host.Interrupt();
    host.Finish();
    EXPECT_TRUE(kept().contains(Text("<failure message=\"interrupted while"))) << kept().toStdString();
    EXPECT_TRUE(kept().contains(Text("skipped=\"1\"")));
    host.Run({Text("run"), Text("--junit"), Text("/nowhere/steps.xml"), Show("")});
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_TRUE(host.Errors().contains(Text("/nowhere/steps.xml: cannot be written"))) << host.Errors().toStdString();
}

TEST_F(Steps, AReportNeverTakesThePlaceOfSomethingElse) {
    const QString show = Show("");
    const auto content = [&] {
        QFile file(show);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll().toStdString();
    };
    const std::string before = content();
    host.Run({Text("run"), Text("--junit"), show, show});
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_EQ(host.Errors().toStdString(), show.toStdString() + " is there, and is no such report\n");
    EXPECT_EQ(content(), before);
    host.Run({Text("run"), Text("--junit"), host.Folder(), show});
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_EQ(host.Errors().toStdString(), host.Folder().toStdString() + " is a folder\n");
}

TEST_F(Steps, OfOneCommandWaitFirstForWhatSendIsTold) {
    const QString driver = host.File(
        Text("slow.js"), "({ Info: { Variables: { Online: { Type: 'Enum', Items: ['no', 'yes'] } } }, Device: { "
                         "Online: 'no' },\n"
                         "   _mStart: function () { var d = this.Device;\n"
                         "                          QCalverin.SetTimeout(function () { d.Online = 'yes'; }, 100); },\n"
                         "   Ask: function (late) { if (this.Device.Online !== 1) return 'error: offline';\n"
                         "                          return 'asked'; } })");
    host.Run({Text("send"), driver, Text("script"), Text("Ask")});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Output().contains(Text("Error:   offline\n"))) << host.Output().toStdString();
    host.Run({Text("send"), Text("--wait"), Text("Online=yes"), Text("--wait"), Text("script.Running = true"), driver,
              Text("script"), Text("Ask")});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("asked")));
    host.Run({Text("--timeout"), Text("300"), Text("send"), Text("--wait=Online=maybe"), driver, Text("script"),
              Text("Ask")});
    EXPECT_EQ(host.ExitCode(), 3);
    host.Run({Text("send"), Text("--wait"), Text("Online"), driver, Text("script"), Text("Ask")});
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_TRUE(host.Errors().startsWith(Text("--wait: expected NAME=VALUE"))) << host.Errors().toStdString();
}

TEST_F(Steps, AndLinesOfWatchHaveTheSameConditions) {
    host.SetInput("wait Rate 0.500\nwait Rate=0.5 1000\nwait Rate >= 0.5\nwait \"Panel.Open = false\" 1000\npause 5\n"
                  "wait Rate > 0.5 20\n");
    host.Run({Text("watch"), Show("")});
    EXPECT_EQ(host.ExitCode(), 3);
    EXPECT_TRUE(host.Errors().endsWith(Text("\"Rate\" is \"0.500\", and should be: Rate > 0.5, after 20 ms\n")))
        << host.Errors().toStdString();
    for (const char* line : {"wait Rate", "wait Rate=1 soon", "wait Rate=1 5 6", "pause", "pause soon"}) {
        host.SetInput(QByteArray(line) + "\n");
        host.Run({Text("watch"), Show("")});
        EXPECT_EQ(host.ExitCode(), 2) << line;
    }
}

} // namespace
