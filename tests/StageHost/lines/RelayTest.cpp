#include "Relay.h"

#include <csignal>

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QSerialPort>
#include <QTemporaryDir>
#include <QUdpSocket>

#include "LinesFixture.h"

using namespace stagehost;

namespace {

const QString kHere = QStringLiteral("127.0.0.1");

class RelayOf : public testing::Test {
protected:
    void GivenDevice(LineKind kind) {
        device = Endpoint::Make(kind, heard);
        ASSERT_EQ(device->Open({kind, kHere, 0, {}}).toStdString(), "");
        plan.device = device->Place();
        plan.listen = {kind, kHere, 0, {}};
    }

    void GivenRelay() {
        relay = std::make_unique<Relay>(plan, [this](const TrafficEntry& entry) { Note(entry); });
        ASSERT_EQ(relay->Open().toStdString(), "");
    }

    std::uint16_t Port() const { return relay->Listener().Place().port; }

    void Note(const TrafficEntry& entry) {
        QString text = QString::number(entry.connection) + QLatin1Char(' ');
        if (entry.event == TrafficEvent::Bytes)
            text += QLatin1String(kSideNames[static_cast<int>(entry.by)]) + QStringLiteral(": ") +
                    QString::fromLatin1(entry.bytes.left(20));
        else
            text += QLatin1String(kTrafficEventNames[static_cast<int>(entry.event)]);
        if (entry.event == TrafficEvent::Ended || entry.event == TrafficEvent::Reset)
            text += QStringLiteral(" by ") + QLatin1String(kSideNames[static_cast<int>(entry.by)]);
        noted += text;
        bytesNoted += entry.bytes.size();
    }

    bool NotesBecome(const char* text) {
        return Eventually([&] { return noted.join(QStringLiteral(", ")) == QString::fromLatin1(text); });
    }
    std::string Notes() const { return noted.join(QStringLiteral(", ")).toStdString(); }

    RelayPlan plan;
    HeardNews heard;
    std::unique_ptr<Endpoint> device;
    std::unique_ptr<Relay> relay;
    QStringList noted;
    qint64 bytesNoted = 0;
};

} // namespace

TEST_F(RelayOf, TcpPassesBothWaysAndTellsOfIt) {
    GivenDevice(LineKind::Tcp);
    GivenRelay();
    heard.onOpened = [&](LineId line) { device->Send(line, "hello"); };
    Caller caller(Port());
    EXPECT_TRUE(caller.Hears("hello"));
    caller.channel->Send("ask");
    EXPECT_TRUE(heard.Becomes("opened 1, 1: ask")) << heard.Text();
    caller.channel->EndSending();
    EXPECT_TRUE(heard.Becomes("opened 1, 1: ask, ended 1")) << heard.Text();
    device->Send(1, "late answer");
    device->Close(1);
    EXPECT_TRUE(caller.Hears("hellolate answer"));
    EXPECT_TRUE(NotesBecome("1 opened, 1 device: hello, 1 program: ask, 1 ended by program, 1 device: late answer, "
                            "1 ended by device"))
        << Notes();
    EXPECT_TRUE(Eventually([&] { return caller.isLost; }));
    EXPECT_EQ(caller.whyLost.toStdString(), "");
}

TEST_F(RelayOf, TcpPassesAResetOnFromEitherSide) {
    GivenDevice(LineKind::Tcp);
    GivenRelay();
    Caller first(Port());
    ASSERT_TRUE(heard.Becomes("opened 1"));
    device->Reset(1);
    EXPECT_TRUE(Eventually([&] { return first.isLost; }));
    EXPECT_TRUE(first.wasReset);
    Caller second(Port());
    ASSERT_TRUE(heard.Becomes("opened 1, opened 2"));
    second.channel->Reset();
    EXPECT_TRUE(heard.Becomes("opened 1, opened 2, closed 2")) << heard.Text();
    EXPECT_NE(heard.lastWhy.toStdString(), "");
    EXPECT_TRUE(NotesBecome("1 opened, 1 reset by device, 2 opened, 2 reset by program")) << Notes();
}

TEST_F(RelayOf, ADeviceThatCannotBeReachedIsToldAndTheProgramSeesAReset) {
    GivenDevice(LineKind::Tcp);
    device->Leave();
    GivenRelay();
    Caller caller(Port());
    EXPECT_TRUE(Eventually([&] { return caller.isLost; }));
    EXPECT_TRUE(caller.wasReset);
    EXPECT_TRUE(NotesBecome("1 opened, 1 unreachable")) << Notes();
    ASSERT_EQ(device->Return().toStdString(), "");
    Caller again(Port());
    EXPECT_TRUE(heard.Becomes("opened 1")) << heard.Text();
}

TEST_F(RelayOf, ASlowDeviceHoldsTheProgramUpAndTheOtherWayRound) {
    GivenDevice(LineKind::Tcp);
    GivenRelay();
    Caller caller(Port());
    ASSERT_TRUE(heard.Becomes("opened 1"));
    const QByteArray much(64 * 1024 * 1024, 'x');
    device->Stall();
    caller.channel->Send(much);
    ASSERT_TRUE(Eventually([&] { return bytesNoted > 256 * 1024; }));
    qint64 before = -1;
    ASSERT_TRUE(Eventually([&] { return std::exchange(before, bytesNoted) == bytesNoted; })); // nothing moves any more
    EXPECT_LT(bytesNoted, much.size() / 2);
    device->Resume();
    EXPECT_TRUE(Eventually([&] { return bytesNoted == much.size(); }));
    caller.channel->SetReading(false);
    device->Send(1, much);
    ASSERT_TRUE(Eventually([&] { return bytesNoted > much.size() + 256 * 1024; }));
    EXPECT_TRUE(Eventually([&] { return std::exchange(before, bytesNoted) == bytesNoted; }));
    EXPECT_LT(bytesNoted, much.size() + much.size() / 2);
    caller.channel->SetReading(true);
    EXPECT_TRUE(Eventually([&] { return caller.came.size() == much.size(); }));
}

TEST_F(RelayOf, WhoCannotTakeMoreHoldsEverythingUp) {
    GivenDevice(LineKind::Tcp);
    GivenRelay();
    Caller caller(Port());
    ASSERT_TRUE(heard.Becomes("opened 1"));
    relay->HoldUp(true);
    caller.channel->Send("waits");
    Caller marker(Port()); // what was sent before it has had its chance when this is let in
    ASSERT_TRUE(heard.Becomes("opened 1, opened 2")) << heard.Text();
    relay->HoldUp(false);
    EXPECT_TRUE(heard.Becomes("opened 1, opened 2, 1: waits")) << heard.Text();
}

TEST_F(RelayOf, SeveralConnectionsStayApart) {
    GivenDevice(LineKind::Tcp);
    GivenRelay();
    heard.onCame = [&](LineId line, const QByteArray& bytes) { device->Send(line, bytes); };
    std::vector<std::unique_ptr<Caller>> callers;
    for (int count = 0; count < 20; ++count)
        callers.push_back(std::make_unique<Caller>(Port()));
    for (int round = 0; round < 20; ++round) {
        for (int count = 0; count < 20; ++count)
            callers[static_cast<std::size_t>(count)]->channel->Send(QByteArray(1, static_cast<char>('a' + count)));
    }
    for (int count = 0; count < 20; ++count)
        EXPECT_TRUE(callers[static_cast<std::size_t>(count)]->Hears(QByteArray(20, static_cast<char>('a' + count))));
}

TEST_F(RelayOf, UdpGivesEachSenderItsOwnWayToTheDevice) {
    GivenDevice(LineKind::Udp);
    GivenRelay();
    heard.onCame = [&](LineId line, const QByteArray& bytes) { device->Send(line, "answer " + bytes); };
    QUdpSocket one;
    QUdpSocket other;
    one.writeDatagram("1", QHostAddress(QHostAddress::LocalHost), Port());
    ASSERT_TRUE(Eventually([&] { return one.hasPendingDatagrams(); }));
    other.writeDatagram("2", QHostAddress(QHostAddress::LocalHost), Port());
    ASSERT_TRUE(Eventually([&] { return other.hasPendingDatagrams(); }));
    EXPECT_FALSE(heard.all.filter(QStringLiteral("opened 2")).isEmpty());
    QByteArray answer(100, '\0');
    answer.resize(static_cast<int>(one.readDatagram(answer.data(), answer.size())));
    EXPECT_EQ(answer.toStdString(), "answer 1");
    EXPECT_TRUE(NotesBecome("1 opened, 1 program: 1, 1 device: answer 1, 2 opened, 2 program: 2, 2 device: answer 2"))
        << Notes();
}

TEST_F(RelayOf, ASerialLineTakesAProgramOnAPseudoTerminalToTheRealPort) {
    GivenDevice(LineKind::Serial);
    plan.serial.Set(SerialSetting::BaudRate, 19200);
    plan.listen.path.clear();
    GivenRelay();
    ASSERT_TRUE(heard.Becomes("opened 1")); // the relay has the device's port open
    QSerialPort program;
    program.setPortName(QFileInfo(relay->Listener().Place().path).canonicalFilePath());
    ASSERT_TRUE(program.open(QIODevice::ReadWrite));
    ASSERT_TRUE(NotesBecome("0 back, 1 opened")) << Notes();
    program.write(QByteArray("\x02IN1\x03"));
    ASSERT_TRUE(Eventually([&] { return heard.all.join(QString()).endsWith(QStringLiteral("\x02IN1\x03")); }));
    device->Send(1, "\x06");
    EXPECT_TRUE(Eventually([&] { return program.bytesAvailable() == 1; }));
    EXPECT_EQ(program.readAll().toStdString(), "\x06");
    program.close();
    EXPECT_TRUE(Eventually([&] { return noted.last() == QStringLiteral("1 closed"); })) << Notes();
    device->Leave();
    EXPECT_TRUE(Eventually([&] { return noted.last() == QStringLiteral("0 unreachable"); })) << Notes();
    ASSERT_EQ(device->Return().toStdString(), "");
    EXPECT_TRUE(Eventually([&] { return noted.last() == QStringLiteral("0 back"); })) << Notes();
}

TEST_F(RelayOf, WhatASerialDeviceSaysAtOnceReachesTheProgramThatHasJustCome) {
    for (int round = 0; round < 20; ++round) {
        GivenDevice(LineKind::Serial);
        plan.listen.path.clear();
        GivenRelay();
        ASSERT_TRUE(heard.Becomes("opened 1"));
        QSerialPort program;
        program.setPortName(QFileInfo(relay->Listener().Place().path).canonicalFilePath());
        ASSERT_TRUE(program.open(QIODevice::ReadWrite));
        device->Send(1, "hello");
        EXPECT_TRUE(Eventually([&] { return program.bytesAvailable() == 5; })) << Notes();
        program.close();
        relay.reset();
        device.reset();
        heard.all.clear();
    }
}

TEST_F(RelayOf, MischiefIsTheSameForTheSameSeedAndNothingButWhatIsAskedFor) {
    GivenDevice(LineKind::Tcp);
    plan.mischief = MischiefPlan{7, {Prank::Repeat, Prank::Split, Prank::Late}, 2};
    QStringList runs[2];
    for (QStringList& run : runs) {
        noted.clear();
        heard.all.clear();
        GivenRelay();
        Caller caller(Port());
        QByteArray sent;
        for (int count = 0; count < 20; ++count) {
            const QByteArray piece = QByteArray::number(count) + ';';
            caller.channel->Send(piece);
            sent += piece;
            ASSERT_TRUE(Eventually([&] { return noted.filter(QStringLiteral("program: ")).size() == count + 1; }));
        }
        run = noted;
        relay.reset();
    }
    EXPECT_EQ(runs[0], runs[1]);
    EXPECT_FALSE(runs[0].filter(QStringLiteral("prank")).isEmpty());
}

TEST_F(RelayOf, EveryKindOfMischiefLeavesTheRelayWhole) {
    GivenDevice(LineKind::Tcp);
    heard.onCame = [&](LineId line, const QByteArray& bytes) { device->Send(line, bytes); };
    heard.onEnded = [&](LineId line) { device->Close(line); };
    for (std::uint64_t seed = 0; seed < 20; ++seed) {
        plan.mischief = MischiefPlan{
            seed,
            {Prank::Split, Prank::Cut, Prank::Repeat, Prank::Reset, Prank::HalfClose, Prank::Nonsense, Prank::Silence},
            2};
        GivenRelay();
        for (int count = 0; count < 10; ++count) {
            Caller caller(Port());
            for (int piece = 0; piece < 5; ++piece)
                caller.channel->Send("some bytes");
            caller.channel->EndSending();
            EXPECT_TRUE(Eventually([&] { return caller.isLost || caller.hasEnded; })) << Notes();
        }
        noted.clear();
    }
}
