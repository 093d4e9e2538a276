#include <QJsonArray>
#include <QJsonValue>

#include "PeersFixture.h"

/// Recordings that play a peer, and what a failure tells of the traffic of peers.

using peershow::PeersOfAShow;
using peershow::Text;

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

namespace {

/// A device that was off when it was asked first, and on when it was asked again. Its answers took a minute and more.
const QByteArray kSlowEvening = R"({"device":"127.0.0.1:1","kind":"tcp","traffic":1}
{"at":0.1,"connection":1,"event":"opened","who":"127.0.0.1:2"}
{"at":0.1,"connection":1,"from":"program","text":"STATE\r"}
{"at":90,"connection":1,"from":"device","text":"off\r"}
{"at":90,"connection":1,"from":"program","text":"ON\r"}
{"at":180,"connection":1,"from":"device","text":"ok\r"}
{"at":180,"connection":1,"from":"program","text":"STATE\r"}
{"at":270,"connection":1,"from":"device","text":"on\r"}
{"at":271,"event":"end"}
)";

class ReplaysOfAShow : public PeersOfAShow {
protected:
    ReplaysOfAShow() { host.File(Text("evening.traffic"), kSlowEvening); }

    void PlayReplay(const char* more, const QByteArray& steps) {
        host.Run({Text("run"), host.File(Text("replayed.json"), QByteArray(R"({"peers":[{"name":"fake",)") + more +
                                                                    R"("replay":"evening.traffic"}],
            "devices":[{"name":"dev","driver":"driver.js","settings":{"host":{"peer":"fake"},"port":{"peer":"fake"}}}],
            "steps":[{"wait":{"until":"dev.Online = yes","within":30000}},)" +
                                                                    steps + "]}")});
    }
};

} // namespace

TEST_F(ReplaysOfAShow, AnswerAtOnceWhereTheShowSaysSo) {
    PlayReplay(R"("fast":true,)",
               Ask("STATE", "off") + "," + Ask("STATE", "off") + "," + Ask("ON", "ok") + "," + Ask("STATE", "on"));
    ExpectWell();
    PlayReplay("", Ask("STATE", "off"));
    EXPECT_EQ(host.ExitCode(), 1) << "a minute is longer than the driver waits";
}

TEST_F(ReplaysOfAShow, ExpectRequestsInTheirOrderWhereTheShowSaysSo) {
    PlayReplay(R"("fast":true,"ordered":true,)", Ask("STATE", "off") + "," + Ask("STATE", "on"));
    ExpectWell();
}

TEST_F(ReplaysOfAShow, AreWorkedByStepsAsScriptsAre) {
    PlayReplay(R"("fast":true,)",
               Ask("STATE", "off") + R"(,{"wait":{"peer":"fake","received":"STATE\r"}},)" + Do(R"("do":"leave")") +
                   "," + Until("dev.Online = no") + "," + Do(R"("do":"return")") + "," + Until("dev.Online = yes") +
                   "," + Do(R"("do":"stall")") + "," + Do(R"("do":"resume")") + "," +
                   Do(R"("do":"lie","with":"silence")") + "," + Do(R"("do":"obey")") + "," + Ask("ON", "ok"));
    ExpectWell();
}

TEST_F(ReplaysOfAShow, TellInAFailureWhatTheyDidNotKnow) {
    PlayReplay(R"("fast":true,)", Ask("STATE", "off") + "," + Ask("OPEN", "ok"));
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Errors().contains(Text("the last lines of the traffic:\n"
                                            "  peer fake: received \"STATE\\r\"\n"
                                            "  peer fake: said \"off\\r\"\n"
                                            "  peer fake: received what it does not know: \"OPEN\\r\"; "
                                            "the nearest: \"ON\\r\", line 5 of its file\n")))
        << host.Errors().toStdString();
}

TEST_F(PeersOfAShow, TellTheLastOfTheirTrafficWhenAStepFails) {
    const QByteArray steps = Ask("a", "a1") + "," + Ask("b", "x");
    const char* const traffic[] = {R"(peer fake: received "a")", R"(peer fake: said "a1\r")",
                                   R"(peer fake: received "b")", R"(peer fake: said "b1\r")"};
    Play(steps);
    EXPECT_EQ(host.ExitCode(), 1);
    QString below = Text("the last lines of the traffic:\n");
    for (const char* line : traffic)
        below += Text("  ") + Text(line) + QLatin1Char('\n');
    EXPECT_TRUE(host.Errors().contains(below)) << host.Errors().toStdString();

    Play(steps, {Text("--json")});
    QJsonArray lines;
    for (const char* line : traffic)
        lines.append(Text(line));
    EXPECT_EQ(host.Json().value(Text("steps")).toArray().last()[Text("traffic")].toArray(), lines)
        << host.Output().toStdString();
    EXPECT_FALSE(host.Errors().contains(Text("traffic"))) << "it is told once";

    Play(steps, {Text("--tap")});
    EXPECT_TRUE(host.Output().contains(Text("  traffic:\n    - \"peer fake: received \\\"a\\\"\"\n")))
        << host.Output().toStdString();
}

TEST_F(PeersOfAShow, TellNoMoreOfTheirTrafficThanTheLastLines) {
    QByteArray steps;
    for (int count = 0; count < 30; ++count)
        steps += Do(QByteArray(R"("call":"push","args":["n)" + QByteArray::number(count) + R"("])").constData()) + ",";
    Play(steps + Ask("z", "x"));
    EXPECT_EQ(host.Errors().count(Text("  peer fake: ")), 20) << host.Errors().toStdString();
    EXPECT_TRUE(host.Errors().contains(Text("said \"n29\\r\"")));
    EXPECT_FALSE(host.Errors().contains(Text("said \"n11\\r\"")));
}

TEST_F(PeersOfAShow, TellTheTrafficOfTheDeviceThatFailedAlone) {
    PlayPeers(
        R"({"name":"fake","script":"fake.js"},{"name":"other","script":"fake.js"})",
        R"({"wait":{"until":"one.Online = yes","within":30000}},{"wait":{"until":"two.Online = yes","within":30000}},
                 {"device":"one","command":"Ask","params":{"text":"p"},"expect":{"result":"p1"}},
                 {"device":"two","command":"Ask","params":{"text":"q"},"expect":{"result":"x"}})",
        R"(,"devices":[
                 {"name":"one","driver":"driver.js","settings":{"host":{"peer":"fake"},"port":{"peer":"fake"}}},
                 {"name":"two","driver":"driver.js","settings":{"host":{"peer":"other"},"port":{"peer":"other"}}}])");
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Errors().contains(Text(R"(peer other: received "q")"))) << host.Errors().toStdString();
    EXPECT_FALSE(host.Errors().contains(Text("peer fake: "))) << host.Errors().toStdString();
}

TEST_F(PeersOfAShow, ThatEndBeforeAnybodyCouldLookAreToldAllTheSame) {
    constexpr int kMany = 60;
    QByteArrayList peers;
    for (int number = 0; number < kMany; ++number)
        peers += R"({"name":"p)" + QByteArray::number(number) + R"(","run":["true"]})";
    host.Begin({Text("watch"), host.File(Text("many.json"), "{\"peers\":[" + peers.join(',') + "]}")});
    for (int number = 0; number < kMany; ++number)
        ASSERT_TRUE(host.WaitForErrors(("peer p" + std::to_string(number) + ": ended with 0\n").c_str())) << number;
    host.Say("quit");
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
}

TEST_F(PeersOfAShow, ThatAreProgramsTellNoTraffic) {
    PlayPeers(Program("own", "echo ready; cat"), R"({"wait":{"peer":"own","received":"x","within":50}})");
    EXPECT_NE(host.ExitCode(), 0);
    EXPECT_FALSE(host.Errors().contains(Text("traffic"))) << host.Errors().toStdString();
}
