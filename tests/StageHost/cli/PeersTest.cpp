#include <QDir>

#include "PeersFixture.h"

/// Peers in shows: how they are started and named, what steps and lines have them do, and how they end.

using peershow::kFake;
using peershow::kObstinate;
using peershow::PeersOfAShow;
using peershow::Text;
using peershow::TextOf;

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
    EXPECT_TRUE(host.Errors().contains(
        Text("peer fake: has received nothing behind \"two\", but should: \"one\", after 50 ms")))
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

TEST_F(PeersOfAShow, AScriptThatIsSavedGoesOnAtTheSamePort) {
    host.Begin({Text("watch"), Text("--reload"), Show({})});
    host.Say("wait dev.Opens 1 60000");
    host.Say("send dev Ask text=a");
    ASSERT_TRUE(host.WaitForOutput("a1\n")) << host.Errors().toStdString();
    host.File(Text("fake.js"), QByteArray(kFake).replace("level = 1", "level = 7"));
    EXPECT_TRUE(host.WaitForErrors("reloaded peer fake (fake.js)")) << host.Errors().toStdString();
    host.Say("wait dev.Opens 2 60000");
    host.Say("send dev Ask text=b");
    EXPECT_TRUE(host.WaitForOutput("b7\n")) << host.Output().toStdString() << host.Errors().toStdString();
    host.Say("quit");
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
}

TEST_F(PeersOfAShow, AScriptIsReadWhereItsFolderWasAlsoWhenAnotherFolderTakesItsPlace) {
    const auto edition = [](const QByteArray& name) {
        return "Counterpart.tcp({ lines: '\\r' });\nfunction edition() { return '" + name + "'; }\n";
    };
    const QDir folder(host.Folder());
    ASSERT_TRUE(folder.mkpath(Text("show")) && folder.mkpath(Text("other")));
    const QString show = host.File(Text("show/s.json"), R"({"peers":[{"name":"fake","script":"fake.js"}]})");
    host.File(Text("show/fake.js"), edition("first"));
    host.File(Text("other/fake.js"), edition("second"));
    host.Begin({Text("watch"), Text("--reload"), show});
    host.Say("peer fake call edition");
    ASSERT_TRUE(host.WaitForOutput("first\n")) << host.Errors().toStdString();
    ASSERT_TRUE(QDir().rename(folder.filePath(Text("show")), folder.filePath(Text("away"))));
    EXPECT_TRUE(host.WaitForErrors("peer fake: goes on with the edition that it has")) << host.Errors().toStdString();
    EXPECT_FALSE(host.Errors().contains(Text("reloaded"))) << host.Errors().toStdString();
    ASSERT_TRUE(QDir().rename(folder.filePath(Text("other")), folder.filePath(Text("show"))));
    EXPECT_TRUE(host.WaitForErrors("reloaded peer fake (fake.js)")) << host.Errors().toStdString();
    host.Say("peer fake call edition");
    EXPECT_TRUE(host.WaitForOutput("second\n")) << host.Output().toStdString() << host.Errors().toStdString();
    host.Say("quit");
    host.Finish();
}

TEST_F(PeersOfAShow, AnEditionThatDoesNotLoadLeavesTheOldOnePlaying) {
    host.Begin({Text("watch"), Text("--reload"), Show({})});
    host.Say("wait dev.Opens 1 60000");
    host.Say("peer fake call setLevel 4");
    ASSERT_TRUE(host.WaitForOutput("was set")) << host.Errors().toStdString();
    host.File(Text("fake.js"), "var d = ;\n");
    EXPECT_TRUE(host.WaitForErrors("peer fake: goes on with the edition that it has")) << host.Errors().toStdString();
    EXPECT_TRUE(host.Errors().contains(Text("peer fake: fake.js:1:9: SyntaxError"))) << host.Errors().toStdString();
    host.Say("send dev Ask text=a");
    EXPECT_TRUE(host.WaitForOutput("a41\n")) << "the line and the state are untouched: " << host.Errors().toStdString();
    host.File(Text("fake.js"), "Counterpart.tcp({ lines: 'x' });\nmissing();\n");
    EXPECT_TRUE(host.WaitForErrors("peer fake: fake.js:2: ReferenceError")) << host.Errors().toStdString();
    host.Say("wait dev.Opens 2 60000");
    host.Say("send dev Ask text=b");
    EXPECT_TRUE(host.WaitForOutput("b1\n")) << "the old one has begun anew: " << host.Errors().toStdString();
    host.Say("quit");
    host.Finish();
}

TEST_F(PeersOfAShow, ProgramsThatStepsWorkAreWaitedForAndOthersToldOf) {
    PlayPeers(Program("slow", "sleep 3; echo ready; read x; echo '{\\\"done\\\":\\\"leave\\\"}'; read x"),
              R"({"peer":"slow","do":"leave"})");
    ExpectWell();
    PlayPeers(Program("mute", "exec cat"), R"({"pause":1})");
    ExpectWell();
    EXPECT_TRUE(host.Errors().contains(
        Text("peer mute: has not said within 2000 ms that it is ready; the show begins without that")))
        << host.Errors().toStdString();
}

TEST_F(PeersOfAShow, AnAnswerToAnotherOrderIsNone) {
    PlayPeers(Program("deaf", "echo ready; read x; echo '{\\\"done\\\":\\\"stall\\\"}'; read x"),
              R"({"peer":"deaf","do":"leave"})");
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Errors().contains(Text(R"(peer deaf: was told "leave", and answered {"done":"stall"})")))
        << host.Errors().toStdString();
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

TEST_F(PeersOfAShow, ThatDoNotStartAreToldOnce) {
    host.File(Text("fake.js"), "var d = Counterpart.tcp();\nd.misbehave('lat');");
    PlayPeers(R"({"name":"fake","script":"fake.js"})");
    EXPECT_EQ(host.Errors().count(Text("no device misbehaves by")), 1) << host.Errors().toStdString();
    EXPECT_TRUE(host.Errors().endsWith(Text("| d.misbehave('lat');\n    at the top level (fake.js:2)\n")))
        << host.Errors().toStdString();
    PlayPeers(R"({"name":"fake","replay":"none.traffic"})");
    EXPECT_EQ(host.Errors().count(Text("none.traffic")), 1) << host.Errors().toStdString();
    PlayPeers(Program("early", "echo first >&2; echo no such port >&2; exit 2"),
              Do(R"("do":"leave")").replace("fake", "early"));
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_EQ(host.Errors().toStdString(),
              "peer early: first\npeer early: ended with 2; its last words: no such port\n");
}

TEST_F(PeersOfAShow, AResultThatIsTooLargeIsToldWithItsSize) {
    host.File(Text("fake.js"), "Counterpart.tcp();\n"
                               "function large() { return new Array(2000001).join('x'); }\n"
                               "function small() { return 'x'; }");
    PlayPeers(R"({"name":"fake","script":"fake.js"})",
              Do(R"("call":"small","expect":{"result":"x"})") + "," + Do(R"("call":"large")"));
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Errors().contains(
        Text("step 2 (peer fake: call large ()): peer fake: has told a line of 2000027 bytes, and "
             "1048576 are the most that are read")))
        << host.Errors().toStdString();
}

TEST_F(PeersOfAShow, AFailureOfACallIsToldWithItsPlace) {
    Play(Do(R"("call":"die")"));
    EXPECT_TRUE(host.Errors().contains(Text("peer fake: fake.js:5: ReferenceError: "))) << host.Errors().toStdString();
    EXPECT_TRUE(host.Errors().contains(Text("\n    at die (fake.js:5)\n"))) << host.Errors().toStdString();
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

TEST_F(PeersOfAShow, ChildrenInASessionOfTheirOwnEndWithThemToo) {
    PlayPeers(Program("hard", kObstinate), R"({"pause":1})");
    ExpectWell();
    ASSERT_GT(ProcessIn("child"), 0);
    ExpectObstinateHasEnded();
}

TEST_F(PeersOfAShow, AllThatTheyHaveStartedEndsWhenTheHostIsKilled) {
    BeginWithObstinateProgram();
    host.Kill();
    ExpectObstinateHasEnded();
}

TEST_F(PeersOfAShow, AllThatTheyHaveStartedEndsWhenASecondInterruptEndsTheHost) {
    BeginWithObstinateProgram();
    host.Interrupt();
    ASSERT_TRUE(HasNotedInterrupt());
    host.Interrupt();
    host.Finish();
    ExpectObstinateHasEnded();
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
    Play(Do(R"("call":"loop")"), {Text("--timeout"), Text("1500")});
    EXPECT_EQ(host.ExitCode(), 1) << host.Errors().toStdString();
    EXPECT_TRUE(host.Errors().contains(Text("peer fake: no answer to \"loop\" within 1500 ms")))
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
