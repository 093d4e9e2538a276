#include <chrono>
#include <thread>

#include "ConnectionFixture.h"
#include "Deadline.h"
#include "ManualScripts.h"

// The connection that the templates carry, over TCP, with peers that are kind and peers that are not.

namespace {

using Connections = ConnectionFixture;

} // namespace

TEST_F(Connections, AnAnswerIsHeardHoweverItIsCut) {
    const Peer peer = GivenConnected();
    HeardWith("online");
    Do("ask('STATE')");
    EXPECT_EQ(peer.Receive(7), "STATE\r\n");
    for (const char byte : std::string("on\r\n"))
        peer.Send(std::string(1, byte));
    EXPECT_EQ(HeardWith("answer"), "connecting online answer:on");
}

TEST_F(Connections, OfFramesThatComeTogetherTheFirstIsTheAnswer) {
    const Peer peer = GivenConnected();
    Do("ask('A')");
    EXPECT_EQ(peer.Receive(3), "A\r\n");
    peer.Send("one\r\ntwo\r\nthree\r\n");
    EXPECT_EQ(HeardWith("three"), "connecting online answer:one frame:two frame:three");
}

TEST_F(Connections, OneQuestionIsUnderWayAtATime) {
    const Peer peer = GivenConnected();
    Do("ask('A'); ask('B'); ask('C')");
    EXPECT_EQ(peer.Receive(3), "A\r\n");
    peer.Send("1\r\n");
    EXPECT_EQ(peer.Receive(3), "B\r\n");
    peer.Send("2\r\n");
    EXPECT_EQ(peer.Receive(3), "C\r\n");
    peer.Send("3\r\n");
    EXPECT_EQ(HeardWith("answer:3"), "connecting online answer:1 answer:2 answer:3");
}

TEST_F(Connections, WhatNobodyAnswersHoldsNothingUp) {
    const Peer peer = GivenConnected();
    Do("c.say('ONE'); c.say('TWO'); ask('THREE'); c.say('FOUR')");
    EXPECT_EQ(peer.Receive(17), "ONE\r\nTWO\r\nTHREE\r\n");
    peer.Send("yes\r\n");
    EXPECT_EQ(peer.Receive(6), "FOUR\r\n");
}

TEST_F(Connections, WhatReadyAsksGoesInFrontOfWhatWaits) {
    GivenConnectionScript();
    Do("given({ " + TcpTo(listener.GetPort()) +
       ", ready: function () { ask('LOGIN'); ask('MODE'); } }); ask('GO'); ask('ON')");
    const Peer peer = listener.Accept();
    for (const std::string request : {"LOGIN\r\n", "MODE\r\n", "GO\r\n", "ON\r\n"}) {
        EXPECT_EQ(peer.Receive(request.size()), request);
        peer.Send("OK\r\n");
    }
}

TEST_F(Connections, AFrameThatDoesNotMatchIsNoAnswer) {
    const Peer peer = GivenConnected();
    Do("ask('STATE', { match: function (text) { return text.indexOf('STATE') === 0; } })");
    EXPECT_EQ(peer.Receive(7), "STATE\r\n");
    peer.Send("EVENT 1\r\nSTATE on\r\n");
    EXPECT_EQ(HeardWith("answer"), "connecting online frame:EVENT 1 answer:STATE on");
}

TEST_F(Connections, AQuestionWaitsForTheConnection) {
    const std::uint16_t port = listener.GetPort();
    listener.Close();
    GivenOpen(TcpTo(port));
    HeardWith("offline: nobody listens (127.0.0.1:" + std::to_string(port) + ")");
    Do("ask('A')");
    listener.Reopen(port);
    const Peer peer = listener.Accept();
    EXPECT_EQ(peer.Receive(3), "A\r\n");
    peer.Send("1\r\n");
    HeardWith("online answer:1");
}

TEST_F(Connections, AQuestionThatWaitsTooLongSaysWhyNothingIsConnected) {
    const std::uint16_t port = ClosedPort();
    GivenOpen(TcpTo(port) + ", waitTime: 100");
    EXPECT_EQ(Call("Command", {"A"}), "error: not connected: nobody listens (127.0.0.1:" + std::to_string(port) + ")");
}

TEST_F(Connections, APeerThatAnswersNoConnectIsGivenUpAndTriedAgain) {
    const SilentPort silent;
    GivenOpen(TcpTo(silent.GetPort()) + ", connectTime: 100");
    HeardWith("offline: no answer within 100 ms (127.0.0.1:" + std::to_string(silent.GetPort()) + ")");
    EXPECT_EQ(Do("c.status()"), "offline");
}

TEST_F(Connections, AResetFailsWhatWasUnderWayAndSendsWhatMayBeSentAgain) {
    Peer peer = GivenConnected();
    Do("ask('TOGGLE'); ask('WAITS')");
    EXPECT_EQ(peer.Receive(8), "TOGGLE\r\n");
    peer.Reset();
    Peer second = listener.Accept();
    EXPECT_EQ(second.Receive(7), "WAITS\r\n");
    Do("ask('SET ON', { again: true })");
    second.Send("1\r\n");
    EXPECT_EQ(second.Receive(8), "SET ON\r\n");
    second.Close();
    const Peer third = listener.Accept();
    EXPECT_EQ(third.Receive(8), "SET ON\r\n");
    third.Send("2\r\n");
    const std::string heard = HeardWith("answer:2");
    EXPECT_NE(heard.find("problem:the connection was broken off"), std::string::npos) << heard;
    EXPECT_EQ(heard.find("problem", heard.find("problem") + 1), std::string::npos) << heard;
}

TEST_F(Connections, APeerThatStopsAnsweringIsLeftSoThatNoLateAnswerMeetsTheNextQuestion) {
    const Peer peer = GivenConnected("answerTime: 150");
    Do("ask('A')");
    EXPECT_EQ(peer.Receive(3), "A\r\n");
    HeardWith("problem:no answer within 150 ms");
    peer.Send("late\r\n");
    EXPECT_TRUE(peer.SeesTheEnd());
    Do("c = null || c; ask('B', { again: true })");
    const Peer second = listener.Accept();
    EXPECT_EQ(second.Receive(3), "B\r\n");
    second.Send("right\r\n");
    EXPECT_EQ(HeardWith("answer:right").find("late"), std::string::npos);
}

TEST_F(Connections, AFrameThatIsTooLongIsDroppedAndTheConnectionStands) {
    const Peer peer = GivenConnected("framing: Connection.lines('\\n', 100)");
    ASSERT_TRUE(peer.Send(std::string(1U << 20U, 'x')));
    peer.Send("\nstill here\n");
    EXPECT_EQ(HeardWith("here"), "connecting online frame:still here");
}

TEST_F(Connections, ALengthThatMakesNoSenseEndsTheConnection) {
    const Peer peer = GivenConnected("framing: Connection.counted({ bytes: 4 })");
    peer.Send("HTTP/1.1 400 Bad Request\r\n\r\n");
    HeardWith("offline: the peer sends a frame of 1213486160 bytes");
    const Peer second = listener.Accept();
    second.Send(std::string("\0\0\0\2ok", 6));
    HeardWith("frame:ok");
}

TEST_F(Connections, AGreetingIsWaitedForBeforeAnythingIsSent) {
    const Peer peer = GivenConnected(
        "greet: function (text, send) { if (text === 'login:') send('me'); return text === 'welcome'; }");
    Do("ask('A')");
    peer.Send("login:\r\n");
    EXPECT_EQ(peer.Receive(4), "me\r\n");
    EXPECT_EQ(Do("c.status()"), "connecting");
    peer.Send("welcome\r\n");
    EXPECT_EQ(peer.Receive(3), "A\r\n");
    HeardWith("online");
}

TEST_F(Connections, AGreetingThatIsRefusedIsTold) {
    const Peer peer = GivenConnected("greet: function (text) { return 'password refused'; }");
    peer.Send("login:\r\n");
    HeardWith("offline: password refused");
    EXPECT_TRUE(peer.SeesTheEnd());
}

TEST_F(Connections, AGreetingThatThrowsOrNeverComesIsTold) {
    const Peer peer = GivenConnected("connectTime: 200, greet: function (text) { throw new Error('what?'); }");
    HeardWith("offline: no greeting within 200 ms");
    const Peer second = listener.Accept();
    second.Send("login:\r\n");
    HeardWith("offline: what?");
}

TEST_F(Connections, APeerThatFallsSilentIsOffline) {
    const Peer peer = GivenConnected("silence: 150");
    HeardWith("offline: nothing heard for 150 ms");
    EXPECT_TRUE(peer.SeesTheEnd());
    const Peer second = listener.Accept();
    HeardWith("nothing heard for 150 ms online");
}

TEST_F(Connections, PausesGrowWhileAPeerIsOfNoUse) {
    GivenOpen(TcpTo(listener.GetPort()) + ", pause: 20, longestPause: 160");
    std::vector<std::chrono::steady_clock::time_point> attempts;
    for (int i = 0; i < 6; ++i) {
        Peer peer = listener.Accept();
        ASSERT_TRUE(peer.IsOpen());
        attempts.push_back(std::chrono::steady_clock::now());
    }
    EXPECT_GE(attempts[5] - attempts[0], std::chrono::milliseconds(20 + 40 + 80 + 100));
}

TEST_F(Connections, APeerThatHasSpokenIsTriedAgainSoon) {
    GivenOpen(TcpTo(listener.GetPort()) + ", pause: 1, longestPause: 60000");
    for (int i = 0; i < 30; ++i) { // doubled each time, the last pause would be 17 minutes
        const Peer peer = listener.Accept();
        ASSERT_TRUE(peer.IsOpen());
        peer.Send("hello\r\n");
        peer.ShutDownSending();
        EXPECT_TRUE(peer.SeesTheEnd());
    }
}

TEST_F(Connections, ThePollGoesOnAndCommandsGoInFrontOfIt) {
    const Peer peer = GivenConnected("pollTime: 20, poll: function () { ask('P1'); ask('P2'); }");
    EXPECT_EQ(peer.Receive(4), "P1\r\n");
    Do("ask('COMMAND')");
    peer.Send("1\r\n");
    EXPECT_EQ(peer.Receive(9), "COMMAND\r\n");
    peer.Send("done\r\n");
    EXPECT_EQ(peer.Receive(4), "P2\r\n");
    peer.Send("2\r\n");
    EXPECT_EQ(peer.Receive(4), "P1\r\n");
    HeardWith("answer:1 answer:done answer:2");
}

TEST_F(Connections, RestsBehindEachThingItSends) {
    const Peer peer = GivenConnected("gap: 60");
    const auto begin = std::chrono::steady_clock::now();
    Do("c.say('1'); c.say('2'); c.say('3')");
    EXPECT_EQ(peer.Receive(9), "1\r\n2\r\n3\r\n");
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(110));
}

TEST_F(Connections, TooManyQuestionsAreRefusedAtOnce) {
    const Peer peer = GivenConnected("most: 2");
    HeardWith("online");
    Do("ask('A'); ask('B'); ask('C'); ask('D')");
    HeardWith("problem:too many requests wait");
}

TEST_F(Connections, CloseEndsAllThatWaitsAndOpenBeginsAgain) {
    const Peer peer = GivenConnected();
    HeardWith("online");
    Do("ask('A'); ask('B'); c.close(); ask('C'); c.open(); c.open()");
    EXPECT_TRUE(peer.SeesTheEnd());
    const Peer second = listener.Accept();
    EXPECT_EQ(HeardWith("connecting online stopped problem:the driver has stopped problem:the driver has stopped "
                        "problem:the driver has stopped connecting online")
                  .substr(0, 26),
              "connecting online stopped ");
    second.Send("hello\r\n");
    HeardWith("frame:hello");
}

TEST_F(Connections, WhatAListenerThrowsIsToldAndHarmsNothing) {
    const Peer peer =
        GivenConnected("frame: function (text) { hear(text); if (text === 'bad') throw new Error('mine'); }");
    peer.Send("bad\r\ngood\r\n");
    HeardWith("bad good");
    EXPECT_TRUE(Eventually([&] { return Error() == "Script: mine"; })) << Error();
    EXPECT_EQ(Do("c.status()"), "online");
}

TEST_F(Connections, TextsMayBeUtf8AndOtherwiseAreBytes) {
    Peer peer = GivenConnected("text: 'utf8'");
    Do("ask('\\u20ac')");
    EXPECT_EQ(peer.Receive(5), "\xE2\x82\xAC\r\n");
    peer.Send("\xC3\xA4\r\n\xFF\r\n");
    HeardWith("answer:\xC3\xA4 frame:\xC3\xBF");
    Do("c.close()");
    const Peer second = GivenConnected();
    Do("ask('\\u20ac')");
    HeardWith("problem:characters beyond Latin-1 in a request");
}

TEST_F(Connections, MegabytesOfFramesAreAllHeard) {
    const Peer peer =
        GivenConnected("frame: function (text) { total += text.length; if (text === 'end') hear('end ' + total); }");
    Do("total = 0");
    std::string lines;
    for (int i = 0; i < 20000; ++i)
        lines += "0123456789012345678901234567890123456789012345678\n";
    ASSERT_TRUE(peer.Send(lines + "end\n"));
    HeardWith("end 980003");
}

TEST_F(Connections, AnUnusedOneLeavesNoSocketBehind) {
    GivenConnectionScript();
    const std::size_t before = CountDescriptors();
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(Do("given({" + TcpTo(listener.GetPort()) + "}); c.close(); c.open(); c.close()"), "undefined");
    EndDevice();
    EXPECT_TRUE(Eventually([&] { return CountDescriptors() <= before; }));
}

TEST_F(Connections, WrongOptionsAreToldAtOnce) {
    GivenConnectionScript();
    EXPECT_EQ(Do("new Connection({})"), "error: Connection: choose a transport, such as Connection.tcp(host, port)");
    EXPECT_EQ(Do("new Connection({ transport: Connection.tcp('h', 1), gap: undefined })"),
              "error: Connection: gap is undefined");
}

TEST_F(Connections, TheDriverOfTheManualWorks) {
    std::string script = ScriptsOfTheManual(CONNECTION_MANUAL).at(0);
    script.replace(script.find("4001"), 4, std::to_string(listener.GetPort()));
    GivenScript(ConnectionText() + script);
    const Peer peer = listener.Accept();
    EXPECT_EQ(peer.Receive(8), "LEVEL?\r\n");
    peer.Send("40\r\n");
    std::thread answer([&peer] {
        EXPECT_EQ(peer.Receive(10), "LEVEL 70\r\n");
        peer.Send("done\r\n");
    });
    EXPECT_EQ(Call("SetLevel", {"70"}), "done");
    answer.join();
    EXPECT_EQ(Error(), "");
}

TEST_F(Connections, OverUdpAreOnlineWhenThePeerHasSpoken) {
    const Peer peer = Peer::Datagrams();
    GivenOpen(UdpTo(peer.GetPort()));
    Do("ask('STATE')");
    std::uint32_t port = 0;
    EXPECT_EQ(peer.ReceiveDatagram(&port), "STATE");
    EXPECT_EQ(Do("c.status()"), "connecting");
    peer.SendTo("on", static_cast<std::uint16_t>(port));
    EXPECT_EQ(HeardWith("answer"), "connecting online answer:on");
}

TEST_F(Connections, OverUdpAskAgainForWhatWasLostAndHearNobodyElse) {
    const Peer peer = Peer::Datagrams();
    const Peer stranger = Peer::Datagrams("127.0.0.2");
    GivenOpen(UdpTo(peer.GetPort()) + ", answerTime: 100, tries: 100");
    Do("ask('STATE')");
    std::uint32_t port = 0;
    EXPECT_EQ(peer.ReceiveDatagram(&port), "STATE");
    EXPECT_TRUE(stranger.SendTo("wrong", static_cast<std::uint16_t>(port)));
    EXPECT_EQ(peer.ReceiveDatagram(&port), "STATE");
    peer.SendTo(std::string("a\0b", 3), static_cast<std::uint16_t>(port));
    HeardWith("answer:a");
    EXPECT_EQ(HeardWith("answer").find("wrong"), std::string::npos);
}

TEST_F(Connections, OverUdpTellWhenNobodyAnswersAndComeBack) {
    const Peer peer = Peer::Datagrams();
    GivenOpen(UdpTo(peer.GetPort()) + ", answerTime: 50, silence: 200, pollTime: 20, poll: function () { ask('P'); }");
    HeardWith("problem:no answer within 50 ms");
    HeardWith("offline: nothing heard for 200 ms");
    std::uint32_t port = 0;
    EXPECT_EQ(peer.ReceiveDatagram(&port), "P");
    peer.SendTo("here", static_cast<std::uint16_t>(port));
    HeardWith("online");
}
