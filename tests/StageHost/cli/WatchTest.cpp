#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

#include "InputLines.h"
#include "StageHostProcess.h"

/// A show that runs while somebody speaks to it.

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

constexpr int kSoon =
    20000; // ms: generous for a slow machine, and far below the limits of the waits that are broken off

class Watching : public testing::Test {
protected:
    Watching() {
        host.File(Text("script.js"), "function echo echo\nfunction bad fail boom\nfunction slow never\n");
        show = host.File(Text("show.json"), R"({
            "variables": [{"name":"Level","type":"Integer"},{"name":"Mood"},{"name":"A name"}],
            "devices": [{"name":"desk","script":"script.js"}],
            "cues": [{"name":"Thunder","set":{"Mood":"thunder"}}],
            "tasks": [{"name":"Overture","lines":[{"set":{"Mood":"first"}},{"at":86400000}]}],
            "steps": [{"set":{"Level":3}},{"wait":{"variable":"Level","value":"3"}}]})");
    }

    /// Says these lines to a show of its own.
    void Say(const QByteArray& lines, const QStringList& words = {}) {
        host.SetInput(lines);
        host.Run(QStringList{Text("watch"), show} + words);
    }

    /// Standard output without the times.
    QStringList Lines() {
        QStringList lines;
        for (const QString& line : host.Output().split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            lines += line.size() > 14 && line.at(2) == QLatin1Char(':') ? line.mid(14) : line;
        return lines;
    }

    StageHostProcess host{Text(STAGEHOST_BIN "/fakemodule.kxp6")};
    QString show;
};

} // namespace

TEST_F(Watching, DoesNotWaitForWhatCanNeverBe) {
    show = host.File(Text("show.json"), R"({
        "variables": [{"name":"Level","type":"Integer","max":100},{"name":"House"}],
        "resources": [{"id":1,"name":"House","channels":{"digitalIn":["Door"]}},{"id":2,"name":"Console","dmxIn":{}}]})");
    const std::pair<const char*, const char*> lines[] = {
        {"wait Console Bogus", "\"Console\" is \"Open\" or \"Closed\", never \"Bogus\""},
        {"wait House.Door 2", "\"House.Door\" takes 0 to 1, not 2"},
        {"wait Level loud", "\"Level\" never is \"loud\""},
        {"wait Level 101", "\"Level\" never is \"101\", but \"100\""},
    };
    for (const auto& [line, told] : lines) {
        Say(QByteArray(line) + "\n");
        EXPECT_EQ(host.ExitCode(), 2) << line;
        EXPECT_TRUE(host.Errors().contains(Text(told))) << host.Errors().toStdString();
    }
}

TEST_F(Watching, MeansTheVariableWhereAResourceHasTheSameName) {
    show = host.File(Text("show.json"), R"({
        "variables": [{"name":"House","value":"dark"}],
        "resources": [{"id":1,"name":"House","channels":{"digitalIn":["Door"]}}]})");
    Say("wait House dark\nset House bright\nget House\n");
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_EQ(Lines(), (QStringList{Text("House = bright"), Text("bright")}));
}

TEST_F(Watching, PrintsWhatChangesAndDoesWhatItIsTold) {
    Say("set Level 50\nset \"A name\" \"two words\"\ntask Overture start\nwait Mood first\ntask Overture stop\ncue "
        "Thunder\n");
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_EQ(Lines(), (QStringList{Text("Level = 50"), Text("A name = two words"),
                                    Text("Task Overture: Status = Running"), Text("Task Overture: Line = 1"),
                                    Text("Mood = first"), Text("Task Overture: Status = Stopped"),
                                    Text("Cue Thunder: Count = 1"), Text("Mood = thunder")}));
}

TEST_F(Watching, PrintsTheTimeOfEachChange) {
    Say("set Level 1\n");
    EXPECT_TRUE(
        QRegularExpression(Text("^\\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d  Level = 1\n$")).match(host.Output()).hasMatch())
        << host.Output().toStdString();
}

TEST_F(Watching, PrintsTheNamedObjectsAlone) {
    Say("set Level 50\nset Mood glad\ntask Overture start\nset Level 51\n", {Text("Level"), Text("Overture")});
    const QStringList lines = Lines();
    EXPECT_TRUE(lines.contains(Text("Level = 51")));
    EXPECT_TRUE(lines.contains(Text("Task Overture: Status = Running")));
    EXPECT_FALSE(lines.join(QString()).contains(Text("Mood")));
    Say("", {Text("Nobody")});
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_TRUE(host.Errors().contains(Text("the show has no object \"Nobody\"")));
}

TEST_F(Watching, PrintsTheVariablesOfANamedDevice) {
    Say("set Level 5\nsend desk \"Execute Function\" \"Script Function Name=echo\"\nquit\n", {Text("desk")});
    EXPECT_TRUE(host.Output().contains(Text("desk.Status = "))) << host.Output().toStdString();
    EXPECT_FALSE(host.Output().contains(Text("Level = 5"))) << host.Output().toStdString();
}

TEST_F(Watching, SendsCommandsAndShowsValues) {
    Say("send desk 3 \"Script Function Name=echo\" Param1=a\nget Level\n", {Text("Level")});
    EXPECT_EQ(Lines(), (QStringList{Text("a|||||||"), Text("0")}));
    EXPECT_EQ(host.ExitCode(), 0);
}

TEST_F(Watching, ListsWhatTheShowHas) {
    Say("list\n");
    EXPECT_EQ(host.Output(), Text("Device      desk\n"
                                  "Task        Overture\n"
                                  "Cue         Thunder\n"
                                  "Variable    A name\n"
                                  "Variable    Level\n"
                                  "Variable    Mood\n"
                                  "Variable    desk.Error\n"
                                  "Variable    desk.ScriptFunctions\n"
                                  "Variable    desk.Status\n"));
}

TEST_F(Watching, TellsWhatALineCannotDoAndGoesOn) {
    const std::pair<const char*, const char*> lines[] = {
        {"fly", "there is no \"fly\""},
        {"set Level", "the form is: set NAME VALUE"},
        {"set Level a b", "the form is: set NAME VALUE"},
        {"set Nothing 1", "there is no variable \"Nothing\""},
        {"set Level many", "\"Level\" does not take \"many\""},
        {"get Nothing", "there is no variable \"Nothing\""},
        {"task Nothing start", "the show has no task \"Nothing\""},
        {"task Overture jump", "a task knows start, pause and stop"},
        {"cue Nothing", "the show has no cue \"Nothing\""},
        {"send nobody 3", "the show has no device \"nobody\""},
        {"send desk fly", "desk: has no command \"fly\""},
        {"send desk 3 x", "expected PARAM=VALUE"},
        {"wait Nothing 1", "there is no variable \"Nothing\""},
        {"wait Level 1 soon", "expected a number of milliseconds"},
        {"set \"Level", "a quote is not closed"},
    };
    for (const auto& [line, problem] : lines) {
        Say(QByteArray(line) + "\nset Level 5\n", {Text("Level")});
        EXPECT_EQ(host.ExitCode(), 2) << line;
        EXPECT_TRUE(host.Errors().contains(Text(problem))) << line << ": " << host.Errors().toStdString();
        EXPECT_EQ(Lines(), QStringList{Text("Level = 5")}) << line;
    }
    Say("task Overture pause\n");
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Errors().contains(Text("the device, task or user screen does not run")));
    Say("send desk 3 \"Script Function Name=bad\"\n");
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Errors().contains(Text("boom")));
    Say("wait Level 9 20\n");
    EXPECT_EQ(host.ExitCode(), 3);
    EXPECT_TRUE(host.Errors().contains(Text("\"Level\" is \"0\", not \"9\", after 20 ms")))
        << host.Errors().toStdString();
}

TEST_F(Watching, SetsRampsAndShowsResources) {
    show = host.File(Text("hardware.json"), R"({
        "resources": [
            {"id":1,"name":"House","channels":{"digitalIn":["Door"],"analogIn":[{"name":"Light","max":1000}]}},
            {"id":2,"name":"Console","dmxIn":{}},
            {"id":3,"name":"Port","serial":{"port":"/nowhere/tty"}}],
        "cues": [{"name":"Dusk","set":{"House.Door":1},"ramp":{"House.Light":{"to":500,"time":100}}}],
        "steps": [{"cue":"Dusk"},{"wait":{"variable":"House.Light","value":500}}]})");
    Say("set House.Door 1\nset House.Door 2\n", {Text("House.Door")});
    EXPECT_EQ(Lines(), QStringList{Text("Resource House.Door: Value = 1")});
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_TRUE(host.Errors().contains(Text("\"House.Door\" does not take \"2\""))) << host.Errors().toStdString();
    Say("ramp House.Light 1000 50\nwait House.Light 1000\nget House.Light\n");
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_TRUE(Lines().contains(Text("Resource House.Light: Value = 1000")));
    EXPECT_TRUE(Lines().contains(Text("Kind: analogIn")));
    Say("get Console\nget Port\nset Console 1=5\n");
    EXPECT_TRUE(Lines().contains(Text("Kind: dmxIn")));
    EXPECT_TRUE(Lines().contains(Text("State: Closed")));
    EXPECT_TRUE(Lines().contains(Text("Port: /nowhere/tty")));
    EXPECT_EQ(host.ExitCode(), 2); // nobody has opened the console
    Say("ramp House.Door 1\n");
    EXPECT_EQ(host.ExitCode(), 2);
    Say("ramp Nothing 1 1\n");
    EXPECT_TRUE(host.Errors().contains(Text("the show has no channel \"Nothing\"")));
    Say("ramp Console 1 1\n");
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_TRUE(host.Errors().contains(Text("\"Console\" is no channel"))) << host.Errors().toStdString();
    Say("play\nget House.Door\n");
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_TRUE(Lines().contains(Text("Value: 1")));
    Say("list\n");
    EXPECT_TRUE(host.Output().contains(Text("Resource    House.Door\n")));
}

TEST_F(Watching, PlaysTheStepsOfTheShow) {
    Say("play\n");
    EXPECT_EQ(host.ExitCode(), 0);
    EXPECT_EQ(Lines(), QStringList{Text("Level = 3")});
}

TEST_F(Watching, GivesLinesOfJson) {
    Say("set Level 50\nget Level\nfly\n", {Text("--json"), Text("Level")});
    QStringList kinds;
    for (const QString& line : host.Output().split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QJsonObject object = QJsonDocument::fromJson(line.toUtf8()).object();
        ASSERT_FALSE(object.isEmpty()) << line.toStdString();
        kinds += object.contains(Text("object")) ? Text("change ") + object.value(Text("object")).toString() +
                                                       object.value(Text("value")).toString()
                                                 : Text("answer ") + object.value(Text("answer")).toString();
    }
    kinds.sort();
    EXPECT_EQ(kinds.filter(Text("change")), QStringList{Text("change Level50")});
    EXPECT_TRUE(kinds.contains(Text("answer 50")));
    EXPECT_EQ(kinds.filter(Text("answer")).size(), 3);
    EXPECT_EQ(host.ExitCode(), 2);
}

TEST_F(Watching, StaysWhileTheUserHasMoreToSay) {
    host.Begin({Text("watch"), show});
    host.Say("set Level 1");
    EXPECT_TRUE(host.WaitForOutput("Level = 1\n"));
    host.Say("set Level 2");
    EXPECT_TRUE(host.WaitForOutput("Level = 2\n"));
    host.Say("quit");
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 0);
}

TEST_F(Watching, EndsProperlyWhenItIsInterrupted) {
    host.Begin({Text("watch"), show});
    host.Say("task Overture start");
    EXPECT_TRUE(host.WaitForOutput("Mood = first\n"));
    host.Interrupt();
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 0);
}

TEST_F(Watching, EndsAtOnceWhenItIsInterruptedWhileACommandIsUnderWay) {
    host.Begin({Text("watch"), Text("--timeout"), Text("50000"), show});
    host.Say("send desk 3 \"Script Function Name=slow\"");
    EXPECT_TRUE(host.WaitForOutput("desk.Status = Ready\n")) << "the function is over, the command is not";
    host.Interrupt();
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 3);
    EXPECT_TRUE(host.Errors().contains(Text("interrupted before the end of \"3\"\n"))) << host.Errors().toStdString();
    EXPECT_LT(host.Milliseconds(), host.Soon(kSoon));
}

TEST_F(Watching, EndsAtOnceWhenItIsInterruptedWhileItWaits) {
    host.Begin({Text("watch"), host.File(Text("waiting.json"), R"({
        "variables": [{"name":"Level","type":"Integer"}],
        "steps": [{"set":{"Level":1}},{"wait":{"variable":"Level","value":"2","within":50000}}]})")});
    host.Say("play");
    EXPECT_TRUE(host.WaitForOutput("Level = 1\n")) << "printed by the wait, since a step that sets looks at no events";
    host.Interrupt();
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 3);
    EXPECT_TRUE(host.Errors().contains(Text("step 2: interrupted while \"Level\" is \"1\", not \"2\"\n")))
        << host.Errors().toStdString();
    EXPECT_LT(host.Milliseconds(), host.Soon(kSoon));
}

TEST(WatchingADriver, EndsAtOnceWhenItIsInterruptedWhileTheDriverStarts) {
    StageHostProcess host;
    const QString driver = host.File(
        Text("driver.js"), "({ _mStart: function () { QCalverin.TraceMessage('busy', 'ERROR'); for (;;) {} } })");
    host.Begin({Text("watch"), Text("--log"), driver});
    EXPECT_TRUE(host.WaitForErrors("busy\n"));
    host.Interrupt();
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 3);
    EXPECT_TRUE(host.Errors().contains(Text("script: interrupted while it starts\n"))) << host.Errors().toStdString();
    EXPECT_LT(host.Milliseconds(), host.Soon(kSoon));
}

TEST_F(Watching, TakesALastLineWithoutALineFeedAndEmptyLines) {
    Say("\n\n  \nset Level 5");
    EXPECT_EQ(Lines(), QStringList{Text("Level = 5")});
    EXPECT_EQ(host.ExitCode(), 0);
}

TEST(SplitWords, PartsALineIntoWords) {
    const auto words = [](const char* line) {
        QStringList list;
        EXPECT_TRUE(stagehost::SplitWords(Text(line), list)) << line;
        return list;
    };
    EXPECT_EQ(words("set  a\tb "), (QStringList{Text("set"), Text("a"), Text("b")}));
    EXPECT_EQ(words("set \"a b\" \"\""), (QStringList{Text("set"), Text("a b"), QString()}));
    EXPECT_EQ(words("\"a=\\\"b\\\" \\\\\""), QStringList{Text("a=\"b\" \\")});
    EXPECT_EQ(words("a\"b c\"d"), QStringList{Text("ab cd")});
    EXPECT_EQ(words("a\\b"), QStringList{Text("a\\b")}) << "a stroke stands for itself outside quotes";
    EXPECT_EQ(words(""), QStringList());
    QStringList list;
    EXPECT_FALSE(stagehost::SplitWords(Text("a \"b"), list));
}
