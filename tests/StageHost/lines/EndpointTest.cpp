#include <gtest/gtest.h>

#include <QFileInfo>
#include <QHostAddress>
#include <QSerialPort>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QUdpSocket>

#include "FewDescriptors.h"
#include "LinesFixture.h"

using namespace stagehost;

namespace {

class TcpLines : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(endpoint->Open({LineKind::Tcp, Here(), 0, {}}).toStdString(), ""); }

    static QString Here() { return QStringLiteral("127.0.0.1"); }
    std::uint16_t Port() const { return endpoint->Place().port; }

    HeardNews news;
    std::unique_ptr<Endpoint> endpoint = Endpoint::Make(LineKind::Tcp, news);
};

class UdpLines : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(endpoint->Open({LineKind::Udp, QStringLiteral("127.0.0.1"), 0, {}}).toStdString(), "");
    }

    void Say(QUdpSocket& from, const char* text) const {
        from.writeDatagram(text, QHostAddress(QHostAddress::LocalHost), endpoint->Place().port);
    }

    HeardNews news;
    std::unique_ptr<Endpoint> endpoint = Endpoint::Make(LineKind::Udp, news);
};

class SerialLines : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(endpoint->Open({LineKind::Serial, {}, 0, {}}).toStdString(), ""); }

    bool OpenPort() {
        port.setPortName(QFileInfo(endpoint->Place().path).canonicalFilePath());
        return port.open(QIODevice::ReadWrite);
    }

    HeardNews news;
    std::unique_ptr<Endpoint> endpoint = Endpoint::Make(LineKind::Serial, news);
    QSerialPort port;
};

} // namespace

TEST_F(TcpLines, TellWhoComesWhatComesAndWhoGoes) {
    Caller caller(Port());
    caller.channel->Send("hello");
    EXPECT_TRUE(news.Becomes("opened 1, 1: hello")) << news.Text();
    endpoint->Send(1, "and you");
    EXPECT_TRUE(caller.Hears("and you"));
    caller.channel->Close();
    EXPECT_TRUE(news.Becomes("opened 1, 1: hello, ended 1")) << news.Text();
    endpoint->EndSending(1);
    EXPECT_TRUE(news.Becomes("opened 1, 1: hello, ended 1, closed 1")) << news.Text();
    EXPECT_EQ(news.lastWhy.toStdString(), "");
}

TEST_F(TcpLines, AnswerBehindTheCallersEnd) {
    Caller caller(Port());
    caller.channel->Send("all");
    caller.channel->EndSending();
    EXPECT_TRUE(news.Becomes("opened 1, 1: all, ended 1")) << news.Text();
    endpoint->Send(1, "answer");
    endpoint->Close(1);
    EXPECT_TRUE(caller.Hears("answer"));
    EXPECT_TRUE(Eventually([&] { return caller.isLost; }));
    EXPECT_EQ(caller.whyLost.toStdString(), "");
}

TEST_F(TcpLines, ACloseLetsAllOutThatWasSentBefore) {
    const QByteArray much(8 * 1024 * 1024, 'x');
    news.onCame = [&](LineId line, const QByteArray&) {
        endpoint->Send(line, much);
        endpoint->Close(line);
    };
    Caller caller(Port());
    caller.channel->Send("give");
    EXPECT_TRUE(Eventually([&] { return caller.hasEnded; }));
    EXPECT_EQ(caller.came.size(), much.size());
}

TEST_F(TcpLines, AResetIsSeenAsOneOnBothSides) {
    Caller first(Port());
    ASSERT_TRUE(news.Becomes("opened 1"));
    endpoint->Reset(1);
    EXPECT_TRUE(Eventually([&] { return first.isLost; }));
    EXPECT_TRUE(first.wasReset);

    Caller second(Port());
    ASSERT_TRUE(news.Becomes("opened 1, opened 2"));
    second.channel->Reset();
    EXPECT_TRUE(news.Becomes("opened 1, opened 2, closed 2")) << news.Text();
    EXPECT_NE(news.lastWhy.toStdString(), "");
}

TEST_F(TcpLines, AHalfCloseLeavesTheOtherHalf) {
    Caller caller(Port());
    ASSERT_TRUE(news.Becomes("opened 1"));
    endpoint->EndSending(1);
    EXPECT_TRUE(Eventually([&] { return caller.hasEnded; }));
    caller.channel->Send("still here");
    EXPECT_TRUE(news.Becomes("opened 1, 1: still here")) << news.Text();
}

TEST_F(TcpLines, WhatNobodyTakesWaitsAndThenDrains) {
    Caller caller(Port());
    ASSERT_TRUE(news.Becomes("opened 1"));
    caller.channel->SetReading(false);
    const QByteArray piece(1024 * 1024, 'x');
    for (int count = 0; count < 32; ++count)
        endpoint->Send(1, piece);
    EXPECT_GT(endpoint->Unsent(1), 0);
    EXPECT_EQ(news.drained, 0);
    caller.channel->SetReading(true);
    EXPECT_TRUE(Eventually([&] { return caller.came.size() == 32 * piece.size(); }));
    EXPECT_TRUE(Eventually([&] { return news.drained == 1; }));
    EXPECT_EQ(endpoint->Unsent(1), 0);
}

TEST_F(TcpLines, StalledTheyLetNobodyInAndHearNothingUntilTheyResume) {
    Caller first(Port());
    ASSERT_TRUE(news.Becomes("opened 1"));
    endpoint->Stall();
    first.channel->Send("early");
    Caller second(Port());
    EXPECT_TRUE(Eventually([&] { return second.isConnected; })); // the system has let it in, the device has not
    EXPECT_EQ(news.Text(), "opened 1");
    endpoint->Resume();
    EXPECT_TRUE(Eventually([&] { return news.all.size() == 3; }));
    news.all.sort();
    EXPECT_EQ(news.Text(), "1: early, opened 1, opened 2");
}

TEST_F(TcpLines, WhoLeavesRefusesAndReturnsToTheSamePort) {
    const std::uint16_t port = Port();
    Caller before(port);
    ASSERT_TRUE(news.Becomes("opened 1"));
    endpoint->Leave();
    EXPECT_TRUE(Eventually([&] { return before.hasEnded; }));
    Caller meanwhile(port);
    EXPECT_TRUE(Eventually([&] { return meanwhile.isLost; }));
    EXPECT_FALSE(meanwhile.isConnected);
    EXPECT_EQ(meanwhile.whyLost.toStdString(), "Connection refused");
    EXPECT_EQ(endpoint->Return().toStdString(), "");
    Caller after(port);
    EXPECT_TRUE(news.Becomes("opened 1, opened 2")) << news.Text();
    EXPECT_EQ(endpoint->Place().port, port);
}

TEST_F(TcpLines, MayBeClosedFromInsideEachCall) {
    news.onOpened = [&](LineId line) {
        if (line == 1)
            endpoint->Reset(line);
    };
    news.onCame = [&](LineId line, const QByteArray&) { endpoint->Close(line); };
    Caller first(Port());
    EXPECT_TRUE(Eventually([&] { return first.isLost; }));
    Caller second(Port());
    second.channel->Send("bye");
    EXPECT_TRUE(Eventually([&] { return second.hasEnded; }));
    EXPECT_EQ(news.Text(), "opened 1, opened 2, 2: bye");
    EXPECT_TRUE(endpoint->Lines().empty());
}

TEST_F(TcpLines, OnATakenPortAreRefusedWithTheSystemsWords) {
    HeardNews others;
    const auto second = Endpoint::Make(LineKind::Tcp, others);
    EXPECT_EQ(second->Open(endpoint->Place()).toStdString(), "Address already in use");
}

TEST_F(TcpLines, WhatIsAskedOfALineThatIsOverDoesNothing) {
    endpoint->Send(7, "nobody");
    endpoint->Close(7);
    endpoint->Reset(7);
    endpoint->EndSending(7);
    endpoint->SetReading(7, false);
    EXPECT_EQ(endpoint->Unsent(7), 0);
    EXPECT_EQ(news.Text(), "");
}

TEST_F(UdpLines, EachSenderIsALineAndGetsItsOwnAnswers) {
    news.joins = false;
    QUdpSocket one;
    QUdpSocket other;
    Say(one, "a");
    ASSERT_TRUE(news.Becomes("opened 1, 1: a")) << news.Text();
    Say(other, "b");
    Say(one, "");
    EXPECT_TRUE(news.Becomes("opened 1, 1: a, opened 2, 2: b, 1: ")) << news.Text();
    endpoint->Send(2, "for the other");
    EXPECT_TRUE(Eventually([&] { return other.hasPendingDatagrams(); }));
    QByteArray answer(100, '\0');
    answer.resize(static_cast<int>(other.readDatagram(answer.data(), answer.size())));
    EXPECT_EQ(answer.toStdString(), "for the other");
    EXPECT_FALSE(one.hasPendingDatagrams());
}

TEST_F(UdpLines, TheLargestDatagramArrivesWhole) {
    QUdpSocket socket;
    const QByteArray large(65507, 'x');
    socket.writeDatagram(large, QHostAddress(QHostAddress::LocalHost), endpoint->Place().port);
    EXPECT_TRUE(Eventually([&] { return news.all.size() == 2 && news.all.last().size() == large.size() + 3; }));
}

TEST_F(UdpLines, ALineThatWasClosedIsAnotherOneWhenItsSenderSpeaksAgain) {
    QUdpSocket socket;
    Say(socket, "a");
    ASSERT_TRUE(news.Becomes("opened 1, 1: a"));
    endpoint->Close(1);
    Say(socket, "b");
    EXPECT_TRUE(news.Becomes("opened 1, 1: a, opened 2, 2: b")) << news.Text();
}

TEST_F(UdpLines, TheSilentAreForgottenWhenTooManySpeak) {
    std::vector<std::unique_ptr<QUdpSocket>> sockets;
    for (int count = 0; count < 1025; ++count) {
        sockets.push_back(std::make_unique<QUdpSocket>());
        Say(*sockets.back(), "x");
        ASSERT_TRUE(Eventually([&] { return news.all.contains(QStringLiteral("%1: x").arg(count + 1)); }));
    }
    EXPECT_TRUE(news.all.contains(QStringLiteral("closed 1")));
    EXPECT_FALSE(news.all.contains(QStringLiteral("closed 2")));
    EXPECT_EQ(endpoint->Lines().size(), 1024U);
}

TEST_F(UdpLines, WhoLeavesIsRefusedByTheSystemAndReturnsToTheSamePort) {
    const std::uint16_t port = endpoint->Place().port;
    endpoint->Leave();
    QUdpSocket socket;
    Say(socket, "lost");
    EXPECT_EQ(endpoint->Return().toStdString(), "");
    EXPECT_EQ(endpoint->Place().port, port);
    Say(socket, "here");
    EXPECT_TRUE(news.Becomes("opened 1, 1: here")) << news.Text();
}

TEST_F(SerialLines, AreOpenWhileAProgramHasThePortOpen) {
    EXPECT_EQ(news.Text(), "");
    ASSERT_TRUE(OpenPort());
    EXPECT_TRUE(news.Becomes("opened 1")) << news.Text();
    port.write(QByteArray("a\r\n\x01\x03\xff", 6));
    EXPECT_TRUE(Eventually([&] { return news.all.last() == QString::fromLatin1("1: a\r\n\x01\x03\xff"); }))
        << news.Text();
    endpoint->Send(1, "\x04\x11ok\r");
    EXPECT_TRUE(Eventually([&] { return port.bytesAvailable() == 5; }));
    EXPECT_EQ(port.readAll().toStdString(), "\x04\x11ok\r");
    port.close();
    EXPECT_TRUE(Eventually([&] { return news.all.last() == QStringLiteral("closed 1"); }));
    ASSERT_TRUE(OpenPort());
    EXPECT_TRUE(Eventually([&] { return news.all.last() == QStringLiteral("opened 2"); }));
}

TEST_F(SerialLines, WhoLeavesHangsUpAndReturnsUnderTheSameName) {
    const QString name = endpoint->Place().path;
    ASSERT_TRUE(OpenPort());
    ASSERT_TRUE(news.Becomes("opened 1"));
    endpoint->Leave();
    EXPECT_FALSE(QFileInfo::exists(name));
    EXPECT_TRUE(Eventually([&] { return port.error() != QSerialPort::NoError; }));
    port.close();
    EXPECT_EQ(endpoint->Return().toStdString(), "");
    EXPECT_EQ(endpoint->Place().path, name);
    ASSERT_TRUE(OpenPort());
    EXPECT_TRUE(news.Becomes("opened 1, opened 2")) << news.Text();
}

TEST_F(SerialLines, AProgramForWhichNoDescriptorIsLeftIsLetInWhenOneIs) {
    ASSERT_TRUE(OpenPort());
    {
        const FewDescriptors none;
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents();
        EXPECT_EQ(news.Text(), "");
    }
    EXPECT_TRUE(news.Becomes("opened 1")) << news.Text();
}

TEST_F(SerialLines, APortForWhichDescriptorsAreMissingIsRefusedUntilAllAreThere) {
    endpoint->Leave();
    int tries = 0;
    for (QString problem = QStringLiteral("first"); !problem.isEmpty() && tries < 10; ++tries) {
        const FewDescriptors few = FewDescriptors::More(tries);
        problem = endpoint->Return();
    }
    EXPECT_GE(tries, 3) << "one descriptor is not enough: its own end and the look at who opens it take one each";
    EXPECT_LT(tries, 10);
    for (int i = 0; i < 10; ++i)
        QCoreApplication::processEvents();
    EXPECT_EQ(news.Text(), "") << "nobody has come";
    ASSERT_TRUE(OpenPort());
    EXPECT_TRUE(news.Becomes("opened 1")) << news.Text();
}

TEST_F(SerialLines, APortThatCannotBePutBackComesWhenDescriptorsAreLeft) {
    ASSERT_TRUE(OpenPort());
    ASSERT_TRUE(news.Becomes("opened 1"));
    {
        const FewDescriptors none(3);
        endpoint->Close(1);
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents();
    }
    port.close();
    EXPECT_TRUE(Eventually([&] { return port.isOpen() || OpenPort(); }));
    EXPECT_TRUE(Eventually([&] { return news.all.contains(QStringLiteral("opened 2")); })) << news.Text();
}

TEST_F(SerialLines, ALineThatIsClosedHereIsPulledOutAndPutBack) {
    ASSERT_TRUE(OpenPort());
    ASSERT_TRUE(news.Becomes("opened 1"));
    endpoint->Close(1);
    EXPECT_TRUE(Eventually([&] { return port.error() != QSerialPort::NoError; }));
    port.close();
    ASSERT_TRUE(OpenPort());
    EXPECT_TRUE(news.Becomes("opened 1, opened 2")) << news.Text();
}

TEST(SerialPlaces, ALinkIsMadeWhereItIsAskedForButNoFileIsReplaced) {
    const QTemporaryDir folder;
    HeardNews news;
    const auto endpoint = Endpoint::Make(LineKind::Serial, news);
    const QString link = folder.filePath(QStringLiteral("projector"));
    EXPECT_EQ(endpoint->Open({LineKind::Serial, {}, 0, link}).toStdString(), "");
    EXPECT_TRUE(QFileInfo(link).isSymLink());

    const QString taken = folder.filePath(QStringLiteral("taken"));
    QFile file(taken);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const auto second = Endpoint::Make(LineKind::Serial, news);
    EXPECT_NE(second->Open({LineKind::Serial, {}, 0, taken}).toStdString(), "");
    EXPECT_TRUE(QFileInfo::exists(taken));
    EXPECT_FALSE(QFileInfo(taken).isSymLink());
}

TEST(SerialPlaces, ALinkThatLeadsToNoSerialLineIsLeftAlone) {
    const QTemporaryDir folder;
    HeardNews news;
    const QString letters = folder.filePath(QStringLiteral("letters"));
    const QString link = folder.filePath(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(letters, link));
    {
        const auto endpoint = Endpoint::Make(LineKind::Serial, news);
        EXPECT_NE(endpoint->Open({LineKind::Serial, {}, 0, link}).toStdString(), "");
    }
    EXPECT_EQ(QFile::symLinkTarget(link).toStdString(), letters.toStdString());
}

TEST(SerialPlaces, ALinkThatARunHasLeftIsMadeAnewAndOneOfAnotherRunIsLeftToIt) {
    const QTemporaryDir folder;
    HeardNews news;
    const QString link = folder.filePath(QStringLiteral("projector"));
    const auto first = Endpoint::Make(LineKind::Serial, news);
    auto second = Endpoint::Make(LineKind::Serial, news);
    ASSERT_TRUE(QFile::link(QStringLiteral("/dev/pts/987654"), link)) << "what a run has left that was killed";
    ASSERT_EQ(first->Open({LineKind::Serial, {}, 0, link}).toStdString(), "");
    const QString terminal = QFile::symLinkTarget(link);
    EXPECT_EQ(second->Open({LineKind::Serial, {}, 0, link}).toStdString(),
              "leads to " + terminal.toStdString() + ", which is in use");
    second.reset();
    EXPECT_EQ(QFile::symLinkTarget(link).toStdString(), terminal.toStdString());
}

TEST(Places, AreReadWithAndWithoutAHost) {
    LinePlace place;
    const QString here = QStringLiteral("127.0.0.1");
    EXPECT_EQ(ReadHostAndPort(QStringLiteral("beamer:4352"), here, place).toStdString(), "");
    EXPECT_EQ(TextOf(place).toStdString(), "beamer:4352");
    EXPECT_EQ(ReadHostAndPort(QStringLiteral("4352"), here, place).toStdString(), "");
    EXPECT_EQ(TextOf(place).toStdString(), "127.0.0.1:4352");
    EXPECT_EQ(ReadHostAndPort(QStringLiteral("[::1]:0"), here, place).toStdString(), "");
    EXPECT_EQ(TextOf(place).toStdString(), "[::1]:0");
    for (const char* wrong : {"", ":", "beamer", "beamer:", "beamer:70000", "beamer:-1", "a:b:1"})
        EXPECT_NE(ReadHostAndPort(QString::fromLatin1(wrong), here, place).toStdString(), "") << wrong;
}
