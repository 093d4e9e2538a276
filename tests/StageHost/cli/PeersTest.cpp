#include <csignal>

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QFile>

#include "StageHostProcess.h"

/// Peers in shows: how they are started and named, what steps and lines have them do, and how they end.

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

QByteArray TextOf(const char* path) {
    QFile file(Text(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

constexpr const char* kDriver = R"js(// @include connection.js
({
    Info: { Setup: { host: { Name: "Host" }, port: { Name: "Port", MinValue: 1, MaxValue: 65535 } },
            Variables: { Online: { Type: "Enum", Items: ["no", "yes"] } } },
    Setup: { host: "127.0.0.1", port: 1 },
    Device: { Online: "no", Last: "" },
    _mStart: function () {
        var driver = this;
        this._connection = new Connection({
            transport: Connection.tcp(this.Setup.host, this.Setup.port),
            framing: Connection.lines("\r"),
            answerTime: 1000,
            status: function (word) { driver.Device.Online = word === "online" ? "yes" : "no"; },
            frame: function (line) { driver.Device.Last = line; }
        });
        this._connection.open();
    },
    _mStop: function () { this._connection.close(); },
    Ask: function (text) { this._connection.command(text, function (answer) { return answer; }); }
}))js";

constexpr const char* kFake = "var level = 1, d = Counterpart.tcp({ lines: '\\r' });\n"
                              "d.onLine = function (c, t) { c.say(t + level + '\\r'); };\n"
                              "function setLevel(l) { level = l + 1; return 'was set'; }\n"
                              "function push(t) { d.say(t + '\\r'); }\n"
                              "function die() { nothing(); }\n"
                              "function loop() { for (;;) {} }\n";

class PeersOfAShow : public testing::Test {
protected:
    PeersOfAShow() {
        host.SetWorkingFolder(host.Folder());
        host.File(Text("connection.js"), TextOf(STAGEHOST_ROOT "/templates/connection.js"));
        host.File(Text("driver.js"), kDriver);
        host.File(Text("fake.js"), kFake);
    }

    /// A show with a driver and its peer, and these steps behind the one that finds it.
    QString Show(const QByteArray& steps) const {
        return host.File(Text("show.json"), R"({"peers":[{"name":"fake","script":"fake.js"}],
            "devices":[{"name":"dev","driver":"driver.js","settings":{"host":{"peer":"fake"},"port":{"peer":"fake"}}}],
            "steps":[{"wait":{"until":"dev.Online = yes","within":30000}})" +
                                                (steps.isEmpty() ? QByteArray() : "," + steps) + "]}");
    }

    void Play(const QByteArray& steps, const QStringList& options = {}) {
        host.Run(options + QStringList{Text("run"), Show(steps)});
    }

    void ExpectWell() const {
        EXPECT_EQ(host.ExitCode(), 0) << host.Output().toStdString() << host.Errors().toStdString();
    }

    /// A show of peers alone.
    void PlayPeers(const QByteArray& peers, const QByteArray& steps = {}, const QByteArray& more = {}) {
        host.Run({Text("run"),
                  host.File(Text("peers.json"), "{\"peers\":[" + peers + "],\"steps\":[" + steps + "]" + more + "}")});
    }

    static QByteArray Program(const char* name, const char* script) {
        return QByteArray("{\"name\":\"") + name + R"(","run":["sh","-c",")" + script + "\"]}";
    }

    static QByteArray Ask(const char* text, const char* answer) {
        return QByteArray(R"({"device":"dev","command":"Ask","params":{"text":")") + text +
               R"("},"expect":{"result":")" + answer + "\"}}";
    }

    static QByteArray Do(const char* deed) { return QByteArray("{\"peer\":\"fake\",") + deed + "}"; }

    static QByteArray Until(const char* condition) {
        return QByteArray("{\"wait\":{\"until\":\"") + condition + "\",\"within\":30000}}";
    }

    /// Waits until a process has gone.
    static bool HasEnded(qint64 process) {
        const QDeadlineTimer deadline(30000);
        while (QFile::exists(Text("/proc/%1/stat").arg(process)) && !deadline.hasExpired()) {
            QFile stat(Text("/proc/%1/stat").arg(process));
            if (stat.open(QIODevice::ReadOnly) && stat.readAll().contains(") Z "))
                return true;
        }
        return !deadline.hasExpired();
    }

    qint64 ProcessIn(const char* name) const {
        QFile file(host.Folder() + QLatin1Char('/') + Text(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toLongLong() : 0;
    }

    StageHostProcess host;
};

} // namespace

TEST_F(PeersOfAShow, AreFoundByTheSettingsThatNameThem) {
    Play(Ask("a", "a1"));
    ExpectWell();
}

TEST_F(PeersOfAShow, TwoRunsOfOneShowStandSideBySide) {
    StageHostProcess other;
    const QString show = Show(Ask("a", "a1"));
    other.Begin({Text("watch"), show});
    other.Say("wait dev.Online yes 30000");
    other.Say("get dev.Online");
    ASSERT_TRUE(other.WaitForOutput("yes\n"));
    host.Run({Text("run"), show});
    ExpectWell();
    other.Finish();
    EXPECT_EQ(other.ExitCode(), 0) << other.Errors().toStdString();
}

TEST_F(PeersOfAShow, GoAwayAndComeBack) {
    Play(Do(R"("do":"leave")") + "," + Until("dev.Online = no") + "," + Do(R"("do":"return")") + "," +
         Until("dev.Online = yes") + "," + Ask("a", "a1"));
    ExpectWell();
}

TEST_F(PeersOfAShow, StallAndResume) {
    Play(Do(R"("do":"stall")") + R"(,{"device":"dev","command":"Ask","params":{"text":"a"},"expect":{"error":"x"}})" +
             "," + Do(R"("do":"resume")"),
         {Text("--keep-going")});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_FALSE(host.Output().contains(Text("a1"))) << host.Output().toStdString();
    Play(Do(R"("do":"stall")") + "," + Do(R"("do":"resume")") + "," + Ask("a", "a1"));
    ExpectWell();
}

TEST_F(PeersOfAShow, LieAndObey) {
    Play(Do(R"("do":"lie","with":"silence")") + "," + Do(R"("do":"obey")") + "," + Ask("a", "a1"));
    ExpectWell();
    Play(Do(R"("do":"lie","with":"nonsense")") + "," + Do(R"("call":"push","args":["x"])") + "," + Ask("a", "a1"));
    EXPECT_NE(host.ExitCode(), 0) << "a lie that changes nothing";
}

TEST_F(PeersOfAShow, AreCalledAndTheirResultIsExpected) {
    Play(Do(R"("call":"setLevel","args":[6],"expect":{"result":"was set"})") + "," + Ask("a", "a7"));
    ExpectWell();
    Play(Do(R"("call":"setLevel","args":[6],"expect":{"result":"other"})"));
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Errors().contains(Text("expected the result \"other\", not \"was set\"")));
    Play(Do(R"("call":"setLevl")"));
    EXPECT_TRUE(host.Errors().contains(Text("the script has no function \"setLevl\"; did you mean \"setLevel\"?")))
        << host.Errors().toStdString();
    Play(Do(R"("call":"die")"));
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Errors().contains(Text("peer fake: fake.js:5: ReferenceError"))) << host.Errors().toStdString();
}

TEST_F(PeersOfAShow, AreAskedWhatTheyHaveReceived) {
    const auto received = [](const char* rest) { return QByteArray(R"({"wait":{"peer":"fake",)") + rest + "}}"; };
    Play(Ask("one", "one1") + "," + Ask("two", "two1") + "," + received(R"("received":"one")") + "," +
         received(R"("matches":"^t.o$")"));
    ExpectWell();
    Play(Ask("one", "one1") + "," + Ask("two", "two1") + "," + received(R"("received":"two")") + "," +
         received(R"("received":"one","within":50)"));
    EXPECT_EQ(host.ExitCode(), 3) << "what came before the frame that was waited for counts no more";
    EXPECT_TRUE(host.Errors().contains(Text("peer fake: has received nothing, but should: \"one\", after 50 ms")))
        << host.Errors().toStdString();
    Play(Ask("one", "one1") + "," + received(R"("matches":"x\u0007","within":50)"));
    EXPECT_TRUE(host.Errors().contains(Text("has received \"one\", but should: like \"x\\x07\", after 50 ms")))
        << host.Errors().toStdString();
}

TEST_F(PeersOfAShow, AreWorkedByLinesOfWatchInTheSameWords) {
    host.SetInput("wait dev.Online yes 30000\npeer fake call setLevel 4\nsend dev Ask text=a\npeer fake received a\n"
                  "send dev Ask text=b\npeer fake matches ^b 1000\npeer fake leave\nwait dev.Online no 30000\n"
                  "peer fake return\nwait dev.Online yes 30000\npeer fake lie repeat\npeer fake obey\n");
    host.Run({Text("watch"), Show({})});
    ExpectWell();
    EXPECT_TRUE(host.Output().contains(Text("was set\n"))) << host.Output().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("a41\n")))
        << "the words of a line are texts: " << host.Output().toStdString();
    for (const auto& [line, complaint] : std::vector<std::pair<const char*, const char*>>{
             {"peer fake leav", "a peer knows no \"leav\"; did you mean \"leave\"?"},
             {"peer fake lie nonsens", "a peer cannot lie with \"nonsens\"; did you mean \"nonsense\"?"},
             {"peer fakes leave", "the show has no peer \"fakes\"; did you mean \"fake\"?"},
             {"peer fake leave now", "the form is: peer NAME leave"},
             {"peer fake call", "the form is: peer NAME call FUNCTION [ARG...]"},
             {"peer fake received", "the form is: peer NAME received TEXT [MS]"},
             {"peer fake received x y", "expected a number of milliseconds, not \"y\""},
             {"peer fake matches (", "\"(\" is no pattern"}}) {
        host.SetInput(line);
        host.Run({Text("watch"), Show({})});
        EXPECT_EQ(host.ExitCode(), 2) << line;
        EXPECT_TRUE(host.Errors().contains(Text(complaint))) << host.Errors().toStdString();
    }
}

TEST_F(PeersOfAShow, TakeOptionsAndASeed) {
    host.File(Text("fake.js"), "var d = Counterpart.tcp(), w = option('word', 'x');\n"
                               "function said() { return w + (Math.random() === option('never', 0)); }");
    PlayPeers(R"({"name":"fake","script":"fake.js","options":{"word":"so "},"seed":4})",
              R"({"peer":"fake","call":"said","expect":{"result":"so false"}})");
    ExpectWell();
}

TEST_F(PeersOfAShow, AScriptThatFailsEndsTheShowWithItsPlace) {
    host.File(Text("fake.js"), "var d = Counterpart.tcp();\nd.misbehave('lat');");
    PlayPeers(R"({"name":"fake","script":"fake.js"})");
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_TRUE(host.Errors().contains(
        Text("peer fake: fake.js:2: Error: no device misbehaves by \"lat\"; did you mean \"late\"?")))
        << host.Errors().toStdString();
}

TEST_F(PeersOfAShow, AnEndpointIsNamedWhereThereAreSeveral) {
    host.File(Text("fake.js"),
              "var a = Counterpart.tcp({ name: 'one', lines: '\\r' }), b = Counterpart.udp({ name: 'two' });\n"
              "a.onLine = function (c, t) { c.say(t + '1\\r'); };");
    const auto show = [&](const char* address) {
        return QByteArray(R"("devices":[{"name":"dev","driver":"driver.js","settings":{"port":)") + address + "}}]";
    };
    PlayPeers(R"({"name":"fake","script":"fake.js"})", Ask("a", "a1"),
              "," + show(R"({"peer":"fake","endpoint":"one"})"));
    ExpectWell();
    PlayPeers(R"({"name":"fake","script":"fake.js"})", {}, "," + show(R"({"peer":"fake"})"));
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_TRUE(
        host.Errors().contains(Text("dev.port: peer fake has several endpoints; name one with \"endpoint\": one, two")))
        << host.Errors().toStdString();
    PlayPeers(R"({"name":"fake","script":"fake.js"})", {}, "," + show(R"({"peer":"fake","endpoint":"on"})"));
    EXPECT_TRUE(host.Errors().contains(Text("peer fake has no endpoint \"on\"; did you mean \"one\"?")));
    PlayPeers(R"({"name":"fake","script":"fake.js"})", {},
              "," + show(R"({"peer":"fake","endpoint":"one","of":"path"})"));
    EXPECT_TRUE(host.Errors().contains(Text("peer fake is reached by the network: it has no \"path\"")));
}

TEST_F(PeersOfAShow, ASettingThatTheUserGivesStandsOverThePeer) {
    const QString show = Show({});
    host.Run({Text("setup"), show, Text("dev"), Text("port=9")});
    ASSERT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    QFile file(show);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    EXPECT_TRUE(text.contains("\"host\":{\"peer\":\"fake\"}")) << text.constData();
    EXPECT_FALSE(text.contains("\"port\":{\"peer\":\"fake\"}")) << text.constData();
}

TEST_F(PeersOfAShow, ASerialPortNamesThePeerThatMakesIt) {
    host.File(Text("fake.js"), "var d = Counterpart.serial({ lines: '\\r' });");
    PlayPeers(R"({"name":"fake","script":"fake.js"})", R"({"pause":1})",
              R"(,"resources":[{"id":1,"name":"line","serial":{"port":{"peer":"fake"}}}])");
    ExpectWell();
    PlayPeers(Program("mute", "echo ready; cat"), {},
              R"(,"resources":[{"id":1,"name":"line","serial":{"port":{"peer":"mute"}}}])");
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_TRUE(host.Errors().contains(Text("peer mute has not told where it is reached")))
        << host.Errors().toStdString();
}

TEST_F(PeersOfAShow, OneThatDiesInTheMiddleIsToldWithItsLastWords) {
    PlayPeers(Program("short", "echo ready; read x; echo first >&2; echo the lamp has burst >&2; exit 4"),
              R"({"peer":"short","do":"leave"})");
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Errors().contains(Text("peer short: first\npeer short: the lamp has burst\n")))
        << host.Errors().toStdString();
    EXPECT_TRUE(host.Errors().contains(Text("step 1 (peer short: leave): peer short: ended with 4; its last words: the "
                                            "lamp has burst")))
        << host.Errors().toStdString();
    PlayPeers(Program("short", "echo ready; kill -9 $$"), R"({"wait":{"peer":"short","received":"x","within":30000}})");
    EXPECT_EQ(host.ExitCode(), 3);
    EXPECT_TRUE(host.Errors().contains(Text("it was ended by a signal"))) << host.Errors().toStdString();
    EXPECT_LT(host.Milliseconds(), 29000) << "nobody waits for one that has gone";
}

TEST_F(PeersOfAShow, TheirOwnChildrenEndWithThem) {
    PlayPeers(Program("parent", "sh -c 'trap : TERM; echo $$ > child; echo ready; while :; do sleep 100; done' & wait"),
              R"({"pause":1})");
    ExpectWell();
    const qint64 child = ProcessIn("child");
    ASSERT_GT(child, 0);
    EXPECT_TRUE(HasEnded(child));
    PlayPeers(Program("parent", "sh -c 'trap : TERM; echo $$ > orphan; echo ready; while :; do sleep 100; done' & "
                                "while [ ! -s orphan ]; do sleep 0.01; done; exit 0"),
              R"({"pause":1000})");
    EXPECT_GT(ProcessIn("orphan"), 0);
    EXPECT_TRUE(HasEnded(ProcessIn("orphan")));
}

TEST_F(PeersOfAShow, OnesThatPrintNothingOrEndlesslyOrHangAreBounded) {
    PlayPeers(Program("mute", "exec cat") + "," + Program("loud", "exec yes") + "," +
                  Program("stubborn", "trap : TERM INT; echo ready; while :; do sleep 100; done") + "," +
                  Program("angry", "echo ready; yes no >&2"),
              R"({"pause":200})");
    ExpectWell();
    EXPECT_LT(host.Errors().count(QLatin1Char('\n')), 1100);
    EXPECT_TRUE(host.Errors().contains(Text("peer angry: says more on standard error")));
}

TEST_F(PeersOfAShow, AScriptThatLoopsDoesNotHoldUpTheEnd) {
    Play(Do(R"("call":"loop")"), {Text("--timeout"), Text("500")});
    EXPECT_EQ(host.ExitCode(), 1) << host.Errors().toStdString();
    EXPECT_TRUE(host.Errors().contains(Text("peer fake: no answer to \"loop\" within 500 ms")))
        << host.Errors().toStdString();
}

TEST_F(PeersOfAShow, EndAlsoWhenTheHostIsKilled) {
    host.Begin({Text("watch"), Show({})});
    host.Say("wait dev.Online yes 30000");
    host.Say("get dev.Online");
    ASSERT_TRUE(host.WaitForOutput("yes\n"));
    const qint64 child = host.Child().section(QLatin1Char(' '), 0, 0).toLongLong();
    ASSERT_GT(child, 0);
    host.Kill();
    EXPECT_TRUE(HasEnded(child));
}

TEST_F(PeersOfAShow, ReplaysAnswerADriverThatPollsOftenerThanTheOneOfTheRecording) {
    host.File(Text("evening.traffic"), R"({"device":"127.0.0.1:1","kind":"tcp","traffic":1}
{"at":0.1,"connection":1,"event":"opened","who":"127.0.0.1:2"}
{"at":0.1,"connection":1,"from":"program","text":"STATE\r"}
{"at":0.2,"connection":1,"from":"device","text":"off\r"}
{"at":0.3,"connection":1,"from":"program","text":"ON\r"}
{"at":0.4,"connection":1,"from":"device","text":"ok\r"}
{"at":0.5,"connection":1,"from":"program","text":"STATE\r"}
{"at":0.6,"connection":1,"from":"device","text":"on\r"}
{"at":0.7,"event":"end"}
)");
    const QByteArray steps =
        Ask("STATE", "off") + "," + Ask("STATE", "off") + "," + Ask("ON", "ok") + "," + Ask("STATE", "on");
    host.Run({Text("run"), host.File(Text("replayed.json"), R"({"peers":[{"name":"fake","replay":"evening.traffic"}],
            "devices":[{"name":"dev","driver":"driver.js","settings":{"host":{"peer":"fake"},"port":{"peer":"fake"}}}],
            "steps":[{"wait":{"until":"dev.Online = yes","within":30000}},)" +
                                                                steps + "]}")});
    ExpectWell();
}
