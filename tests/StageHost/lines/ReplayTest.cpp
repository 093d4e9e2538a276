#include "Replay.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QHostAddress>
#include <QUdpSocket>

#include "TrafficFixture.h"

using namespace stagehost;

namespace {

class ReplayOf : public testing::Test, protected TrafficFixture {
protected:
    void Play(const QByteArray& lines, ReplayPlan plan = {true, false}, const char* kind = "tcp") {
        ReplayNews news;
        news.opened = [](LineId, const QString&) {};
        news.received = [this](LineId, const QByteArray& bytes, int line) {
            received += QString::fromLatin1(bytes) + QLatin1Char('@') + QString::number(line);
        };
        news.said = [](LineId, const QByteArray&) {};
        news.unknown = [this](LineId, const QByteArray& bytes, const QString& nearest, int line,
                              const QString& expected) {
            unknown += QStringLiteral("%1 near %2@%3 expected %4")
                           .arg(QString::fromLatin1(bytes), nearest)
                           .arg(line)
                           .arg(expected);
        };
        TrafficFile file = Read(lines, kind);
        ASSERT_FALSE(file.talks.empty());
        replay = std::make_unique<Replay>(file, plan, news);
        ASSERT_EQ(replay->Open({file.head.device.kind, QStringLiteral("127.0.0.1"), 0, {}}).toStdString(), "");
    }

    std::uint16_t Port() const { return replay->TheEndpoint().Place().port; }
    std::string Received() const { return received.join(QStringLiteral(", ")).toStdString(); }
    std::string Unknown() const { return unknown.join(QStringLiteral(", ")).toStdString(); }

    std::unique_ptr<Replay> replay;
    QStringList received;
    QStringList unknown;
};

} // namespace

TEST_F(ReplayOf, GreetsAndAnswersAsItWas) {
    Play(Device("hello;") + Program("a;") + Device("1;") + Program("b;") + Device("2;"));
    Caller caller(Port());
    EXPECT_TRUE(caller.Hears("hello;"));
    caller.channel->Send("a;");
    EXPECT_TRUE(caller.Hears("hello;1;"));
    caller.channel->Send("b;");
    EXPECT_TRUE(caller.Hears("hello;1;2;"));
    EXPECT_EQ(Received(), "a;@3, b;@5");
    EXPECT_EQ(Unknown(), "");
    EXPECT_EQ(replay->UnknownCount(), 0);
}

TEST_F(ReplayOf, RequestsAreKnownHoweverTheyAreCut) {
    Play(Program("ask\\r") + Device("1\\r") + Program("again\\r") + Device("2\\r"));
    Caller caller(Port());
    caller.channel->Send("as");
    Caller marker(Port()); // the piece has come by itself
    ASSERT_TRUE(Eventually([&] { return replay->TheEndpoint().Lines().size() == 2; }));
    caller.channel->Send("k\ragain\r");
    EXPECT_TRUE(caller.Hears("1\r2\r"));
    EXPECT_EQ(Unknown(), "");
}

TEST_F(ReplayOf, TakesTheTimeThatItTookUnlessItIsFast) {
    const QByteArray lines = R"({"at":0,"connection":1,"from":"program","text":"a"})"
                             "\n"
                             R"({"at":0.4,"connection":1,"from":"device","text":"1"})"
                             "\n";
    Play(lines, {false, false});
    Caller caller(Port());
    QElapsedTimer clock;
    clock.start();
    caller.channel->Send("a");
    EXPECT_TRUE(caller.Hears("1"));
    EXPECT_GE(clock.elapsed(), 390);
}

TEST_F(ReplayOf, WhatIsNotKnownIsToldWithTheNearestAndLeftOut) {
    Play(Program("POWR 1\\r") + Device("ok\\r") + Program("INPT 2\\r") + Device("OK\\r"));
    Caller caller(Port());
    caller.channel->Send("POWR 2\rPOWR 1\r");
    EXPECT_TRUE(caller.Hears("ok\r"));
    EXPECT_EQ(Unknown(), "POWR 2\r near POWR 1\\r@2 expected POWR 1\\r");
    caller.channel->Send("INPT 2\r");
    EXPECT_TRUE(caller.Hears("ok\rOK\r"));
    EXPECT_EQ(replay->UnknownCount(), 1);
}

TEST_F(ReplayOf, ARequestThatComesEarlyIsToldAndAnsweredAndTheSkippedOneIsOver) {
    Play(Program("a;") + Device("1;") + Program("b;") + Device("2;") + Program("c;") + Device("3;"));
    Caller caller(Port());
    caller.channel->Send("b;");
    EXPECT_TRUE(caller.Hears("2;"));
    EXPECT_EQ(Unknown(), "b; near b;@4 expected a;");
    caller.channel->Send("c;");
    EXPECT_TRUE(caller.Hears("2;3;"));
    caller.channel->Send("a;");
    EXPECT_TRUE(Eventually([&] { return unknown.size() == 2; }));
    EXPECT_EQ(unknown.last().toStdString(), "a; near a;@2 expected ");
}

TEST_F(ReplayOf, InAnyOrderEachRequestIsAnsweredAsItWasEachTimeAndThenAsTheLastTime) {
    Play(Program("state;") + Device("off;") + Program("on;") + Device("ok;") + Program("state;") + Device("on;"),
         {true, true});
    Caller caller(Port());
    caller.channel->Send("on;state;state;state;");
    EXPECT_TRUE(caller.Hears("ok;off;on;on;"));
    Caller other(Port());
    other.channel->Send("state;");
    EXPECT_TRUE(other.Hears("on;"));
    EXPECT_EQ(Unknown(), "");
}

TEST_F(ReplayOf, InAnyOrderAStateThatIsAskedForWaitsForTheRequestThatChangedIt) {
    Play(Program("state;") + Device("off;") + Program("state;") + Device("off;") + Program("on;") + Device("ok;") +
             Program("state;") + Device("warm;") + Program("state;") + Device("on;"),
         {true, true});
    Caller caller(Port());
    caller.channel->Send("state;state;state;state;");
    EXPECT_TRUE(caller.Hears("off;off;off;off;"));
    caller.channel->Send("on;state;state;state;");
    EXPECT_TRUE(caller.Hears("off;off;off;off;ok;warm;on;on;"));
}

TEST_F(ReplayOf, InAnyOrderTheLongestRequestThatFitsIsMeant) {
    Play(Program("a") + Device("1") + Program("ab") + Device("2"), {true, true});
    Caller caller(Port());
    caller.channel->Send("ab");
    EXPECT_TRUE(caller.Hears("2"));
}

TEST_F(ReplayOf, InAnyOrderAShorterRequestIsMeantWhereALongerOneTurnsOutDifferently) {
    Play(Program("a") + Device("1") + Program("ab c") + Device("2") + Program("ab cd;") + Device("3") + Program(" d;") +
             Device("4") + Program("b;") + Device("5"),
         {true, true});
    Caller caller(Port());
    caller.channel->Send("ab;a d;ab c d;ab cd;");
    EXPECT_TRUE(caller.Hears("1514243"));
    EXPECT_EQ(Unknown(), "");
}

TEST_F(ReplayOf, InAnyOrderTheLaterOfTwoRequestsIsMeantWhereBothFit) {
    const QByteArray marked = R"({"connection":1,"from":"program","parts":["a",{"free":"[0-9]"},";"]})"
                              "\n";
    Play(Program("a1;") + Device("1;") + marked + Device("2;") + Program("a3;") + Device("3;"), {true, true});
    Caller caller(Port());
    caller.channel->Send("a1;a2;a3;");
    EXPECT_TRUE(caller.Hears("2;2;3;"));
}

TEST_F(ReplayOf, InAnyOrderTextThatLooksLikeAFreePlaceIsARequestOfItsOwn) {
    const QByteArray marked = R"({"connection":1,"from":"program","parts":["a",{"free":"[0-9]"},";"]})"
                              "\n";
    Play(marked + Device("1;") + Program("a<[0-9]>;") + Device("2;"), {true, true});
    Caller caller(Port());
    caller.channel->Send("a<[0-9]>;a5;");
    EXPECT_TRUE(caller.Hears("2;1;"));
}

TEST_F(ReplayOf, InAnyOrderARequestOfNoBytesIsNeverAnswered) {
    Play(Program("") + Device("0;") + Program("a;") + Device("1;"), {true, true});
    Caller caller(Port());
    caller.channel->Send("b;");
    EXPECT_TRUE(Eventually([&] { return unknown.size() == 1; }));
    EXPECT_EQ(Unknown(), "b; near a;@4 expected ");
    caller.channel->Send("a;");
    EXPECT_TRUE(caller.Hears("1;"));
}

TEST_F(ReplayOf, ALongRecordingIsReadyAndPlayedWithinSeconds) {
    constexpr int kPairs = 20000;
    constexpr int kDeadlineMs = 60000; // comparing each request with each takes minutes
    QByteArray lines, asked, answered;
    for (int pair = 0; pair < kPairs; ++pair) {
        const QByteArray number = QByteArray::number(pair);
        lines += Program("LEVEL " + number + ";") + Device("LEVEL=" + number + ";");
        asked += "LEVEL " + number + ";";
        answered += "LEVEL=" + number + ";";
    }
    for (const bool anyOrder : {false, true}) {
        QElapsedTimer clock;
        clock.start();
        Play(lines, {true, anyOrder});
        Caller caller(Port());
        caller.channel->Send(asked);
        EXPECT_TRUE(caller.Hears(answered)) << anyOrder;
        EXPECT_LT(clock.elapsed(), kDeadlineMs) << anyOrder;
    }
    EXPECT_EQ(Unknown(), "");
}

TEST_F(ReplayOf, FreePlacesTakeWhatComesAndGiveItBack) {
    Play(R"({"connection":1,"from":"program","parts":["{\"id\":",{"free":"[0-9]+","as":"id"},"}\n"]})"
         "\n"
         R"({"connection":1,"from":"device","parts":["{\"re\":",{"same":"id"},"}\n"]})"
         "\n",
         {true, true});
    Caller caller(Port());
    caller.channel->Send("{\"id\":41}\n{\"id\":7}\n");
    EXPECT_TRUE(caller.Hears("{\"re\":41}\n{\"re\":7}\n"));
}

TEST_F(ReplayOf, ConnectionsArePlayedOneAfterTheOtherAndThenFromTheBegin) {
    const QByteArray second = R"({"connection":2,"from":"device","text":"second"})"
                              "\n";
    Play(Device("first") + second);
    for (const char* greeting : {"first", "second", "first"}) {
        Caller caller(Port());
        EXPECT_TRUE(caller.Hears(greeting));
    }
}

TEST_F(ReplayOf, EndsAsTheDeviceEnded) {
    const QByteArray ended = R"({"connection":1,"event":"ended","by":"device"})"
                             "\n";
    const QByteArray reset = R"({"connection":2,"event":"reset","by":"device"})"
                             "\n";
    Play(Device("bye") + ended + reset);
    Caller first(Port());
    EXPECT_TRUE(Eventually([&] { return first.hasEnded; }));
    EXPECT_EQ(first.came.toStdString(), "bye");
    Caller second(Port());
    EXPECT_TRUE(Eventually([&] { return second.isLost; }));
    EXPECT_TRUE(second.wasReset);
}

TEST_F(ReplayOf, AProgramThatHasEndedStillHearsItsAnswer) {
    Play(Program("a;") + Device("1;"));
    Caller caller(Port());
    caller.channel->Send("a;");
    caller.channel->EndSending();
    EXPECT_TRUE(Eventually([&] { return caller.isLost; }));
    EXPECT_EQ(caller.came.toStdString(), "1;");
}

TEST_F(ReplayOf, WhatNeverBecomesARequestIsToldAtTheEnd) {
    Play(Program("POWR 1\\r") + Device("ok\\r"));
    Caller caller(Port());
    caller.channel->Send("POWR 1");
    caller.channel->EndSending();
    EXPECT_TRUE(Eventually([&] { return unknown.size() == 1; }));
    EXPECT_EQ(Unknown(), "POWR 1 near POWR 1\\r@2 expected POWR 1\\r");
}

TEST_F(ReplayOf, ADatagramIsOneRequest) {
    Play(Program("ab") + Device("1") + Program("c"), {true, true}, "udp");
    QUdpSocket socket;
    const auto say = [&](const char* text) {
        socket.writeDatagram(text, QHostAddress(QHostAddress::LocalHost), Port());
    };
    say("a");
    EXPECT_TRUE(Eventually([&] { return unknown.size() == 1; }));
    say("abc");
    EXPECT_TRUE(Eventually([&] { return unknown.size() == 2; }));
    say("ab");
    EXPECT_TRUE(Eventually([&] { return socket.hasPendingDatagrams(); }));
    EXPECT_EQ(Received(), "ab@2");
}

TEST_F(ReplayOf, LiesAreToldUntilItObeys) {
    Play(Program("a;") + Device("1;"), {true, true});
    Caller caller(Port());
    replay->Lie(Prank::Repeat);
    caller.channel->Send("a;");
    EXPECT_TRUE(caller.Hears("1;1;"));
    replay->Lie(Prank::None);
    caller.channel->Send("a;");
    EXPECT_TRUE(caller.Hears("1;1;1;"));
    replay->Lie(Prank::Reset);
    caller.channel->Send("a;");
    EXPECT_TRUE(Eventually([&] { return caller.isLost; }));
    EXPECT_TRUE(caller.wasReset);
}
