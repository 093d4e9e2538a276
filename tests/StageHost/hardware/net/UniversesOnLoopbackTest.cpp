#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include <QUdpSocket>

#include "ArtNetPacket.h"
#include "ArtNetPoll.h"
#include "DmxListener.h"
#include "DmxSender.h"
#include "UniverseRecorder.h"

using namespace stagehost;

namespace {

class UniversesOnLoopback : public testing::TestWithParam<DmxProtocol> {
protected:
    UniversesOnLoopback() {
        outPlan.protocol = inPlan.protocol = GetParam();
        outPlan.port = inPlan.port = FreeUdpPort();
        outPlan.universe = inPlan.universe = 7;
    }

    /// Opens an input and waits until it listens.
    std::size_t Listen(DmxListener& listener) {
        const std::size_t number = listener.Add(inPlan, heard);
        listener.Open(number);
        EXPECT_TRUE(heard.notes.WaitFor("state"));
        return number;
    }

    /// Sends bytes to the input as any program may.
    void Send(const QByteArray& bytes) {
        EXPECT_EQ(raw.writeDatagram(bytes, outPlan.address, outPlan.port), bytes.size());
    }

    QByteArray Packet(int level, int sequence, std::uint16_t universe = 7) const {
        DmxFrame frame;
        frame.count = kUniverseSize;
        frame.levels[0] = static_cast<std::uint8_t>(level);
        std::vector<std::uint8_t> bytes;
        if (GetParam() == DmxProtocol::Sacn) {
            SacnPacket packet;
            packet.sourceName = "raw";
            packet.sequence = static_cast<std::uint8_t>(sequence);
            packet.universe = universe;
            packet.frame = frame;
            bytes = WriteSacn(packet);
        } else {
            bytes = WriteArtDmx({static_cast<std::uint8_t>(sequence), 0, universe, frame});
        }
        return {reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())};
    }

    UniverseRecorder sent;
    UniverseRecorder heard;
    DmxOutPlan outPlan;
    DmxInPlan inPlan;
    QUdpSocket raw;
};

} // namespace

TEST_P(UniversesOnLoopback, LevelsGoFromAnOutputToAnInput) {
    DmxListener listener;
    const std::size_t in = Listen(listener);
    DmxSender sender;
    const std::size_t out = sender.Add(outPlan, sent);
    const std::uint8_t levels[] = {255, 128, 1};
    EXPECT_FALSE(sender.Write(out, levels, 0, 3)); // closed
    sender.Open(out);
    EXPECT_TRUE(sender.Status(out).open);
    EXPECT_TRUE(sender.Write(out, levels, 4, 3));
    EXPECT_TRUE(heard.notes.WaitFor("levels 5=255 6=128 7=1"));
    EXPECT_EQ(listener.Levels(in).count, kUniverseSize);
    EXPECT_EQ(listener.Status(in).sources.size(), 1u);
    EXPECT_EQ(listener.Status(in).counts.Refused(), 0u);
}

TEST_P(UniversesOnLoopback, TwoUniversesOfOnePortAreKeptApart) {
    DmxListener listener;
    Listen(listener);
    UniverseRecorder other;
    DmxInPlan otherPlan = inPlan;
    otherPlan.universe = 8;
    listener.Open(listener.Add(otherPlan, other));
    ASSERT_TRUE(other.notes.WaitFor("state"));
    Send(Packet(3, 1, 8));
    EXPECT_TRUE(other.notes.WaitFor("levels 1=3"));
    Send(Packet(4, 1, 7));
    EXPECT_TRUE(heard.notes.WaitFor("levels 1=4"));
}

TEST_P(UniversesOnLoopback, NonsenseIsCountedByItsReasonAndChangesNothing) {
    DmxListener listener;
    const std::size_t in = Listen(listener);
    const QByteArray good = Packet(9, 50);
    Send(QByteArray());
    Send(good.left(15));
    Send(good + QByteArray(10, 'x'));
    Send(QByteArray(9000, '\0'));
    Send(Packet(1, 1, 9)); // another universe
    Send(good);
    Send(Packet(8, 49)); // overtaken
    Send(Packet(10, 51));
    ASSERT_TRUE(heard.notes.WaitFor("levels 1=10"));
    const RefusalCounts counts = listener.Status(in).counts;
    EXPECT_EQ(counts.Of(Refusal::None), 2u);
    EXPECT_EQ(counts.Of(Refusal::TooShort), 2u);
    EXPECT_EQ(counts.Of(Refusal::TooLong), 1u);
    EXPECT_EQ(counts.Of(Refusal::NoSuchProtocol), 1u);
    EXPECT_EQ(counts.Of(Refusal::OtherUniverse), 1u);
    EXPECT_EQ(counts.Of(Refusal::OldSequence), 1u);
}

TEST_P(UniversesOnLoopback, AFloodOfNonsenseHarmsNobody) {
    DmxListener listener;
    const std::size_t in = Listen(listener);
    std::mt19937 random(5568);
    const QByteArray good = Packet(77, 1);
    for (int count = 0; count < 100000; ++count) {
        QByteArray bytes = good.left(static_cast<int>(random() % static_cast<unsigned>(good.size() + 1)));
        for (int change = 0; change < 3 && !bytes.isEmpty(); ++change)
            bytes[static_cast<int>(random() % static_cast<unsigned>(bytes.size()))] = static_cast<char>(random());
        raw.writeDatagram(bytes, outPlan.address, outPlan.port);
    }
    // The flood may have filled what the system keeps, so what is good is sent until it is heard.
    const auto deadline = DmxClock::now() + Notes::kDeadline;
    for (int sequence = 1; listener.Levels(in).levels[0] != 77 && DmxClock::now() < deadline; ++sequence) {
        Send(Packet(77, sequence % 255 + 1));
        std::this_thread::yield();
    }
    EXPECT_EQ(listener.Levels(in).levels[0], 77);
    EXPECT_GT(listener.Status(in).counts.Refused(), 0u);
}

TEST_P(UniversesOnLoopback, APortThatIsTakenIsToldAndComesBack) {
    QUdpSocket owner;
    ASSERT_TRUE(owner.bind(inPlan.address, inPlan.port, QUdpSocket::DontShareAddress));
    DmxListener listener;
    const std::size_t in = listener.Add(inPlan, heard);
    listener.Open(in);
    ASSERT_TRUE(heard.notes.WaitFor("cannot listen at 127.0.0.1:"));
    EXPECT_FALSE(listener.Status(in).open);
    owner.close();
    EXPECT_TRUE(heard.notes.WaitFor("listens again"));
    EXPECT_TRUE(heard.notes.WaitFor("state"));
    EXPECT_TRUE(listener.Status(in).open);
}

TEST_P(UniversesOnLoopback, AClosedInputHearsNothingAndKeepsItsLevels) {
    DmxListener listener;
    const std::size_t in = Listen(listener);
    Send(Packet(5, 1));
    ASSERT_TRUE(heard.notes.WaitFor("levels 1=5"));
    listener.Close(in);
    ASSERT_TRUE(heard.notes.WaitFor("state", 2));
    Send(Packet(6, 2));
    listener.Open(in);
    ASSERT_TRUE(heard.notes.WaitFor("state", 3));
    EXPECT_EQ(listener.Levels(in).levels[0], 5);
    Send(Packet(7, 3));
    EXPECT_TRUE(heard.notes.WaitFor("levels 1=7"));
}

TEST_P(UniversesOnLoopback, LevelsCanBeSetByHand) {
    DmxListener listener;
    const std::size_t in = listener.Add(inPlan, heard);
    DmxFrame frame;
    frame.count = 3;
    frame.levels[2] = 9;
    EXPECT_FALSE(listener.SetByHand(in, frame));
    listener.Open(in);
    ASSERT_TRUE(heard.notes.WaitFor("state"));
    EXPECT_TRUE(listener.SetByHand(in, frame));
    EXPECT_TRUE(heard.notes.WaitFor("levels 3=9"));
}

INSTANTIATE_TEST_SUITE_P(Protocols, UniversesOnLoopback, testing::Values(DmxProtocol::Sacn, DmxProtocol::ArtNet),
                         [](const auto& row) {
                             return std::string(row.param == DmxProtocol::Sacn ? "Sacn" : "ArtNet");
                         });

TEST(SacnOnLoopback, TheEndOfAnOutputIsHeard) {
    UniverseRecorder sent;
    UniverseRecorder heard;
    DmxOutPlan outPlan;
    DmxInPlan inPlan;
    outPlan.port = inPlan.port = FreeUdpPort();
    DmxListener listener;
    const std::size_t in = listener.Add(inPlan, heard);
    listener.Open(in);
    ASSERT_TRUE(heard.notes.WaitFor("state"));
    {
        DmxSender sender;
        sender.Open(sender.Add(outPlan, sent));
        ASSERT_TRUE(heard.notes.WaitFor("hears \"stagehost\""));
    } // three frames tell the end
    const auto deadline = DmxClock::now() + std::chrono::milliseconds(2000);
    while (!listener.Status(in).sources.empty() && DmxClock::now() < deadline)
        std::this_thread::yield();
    EXPECT_TRUE(listener.Status(in).sources.empty());
}

TEST(SacnOnLoopback, ANetworkThatIsNotThereIsToldOnceAndClosesTheOutput) {
    UniverseRecorder sent;
    DmxOutPlan plan;
    plan.multicast = true;
    plan.networkInterface = QStringLiteral("nosuch0");
    plan.continuous = true;
    DmxSender sender;
    const std::size_t out = sender.Add(plan, sent);
    sender.Open(out);
    EXPECT_TRUE(sent.notes.WaitFor("cannot send to 239.255.0.1: there is no network interface \"nosuch0\""));
    ASSERT_TRUE(sent.notes.WaitFor("state", 2));
    const auto deadline = DmxClock::now() + Notes::kDeadline;
    while (sender.Status(out).failures < 5 && DmxClock::now() < deadline)
        std::this_thread::yield();
    EXPECT_FALSE(sender.Status(out).open);
    const auto all = sent.notes.All();
    EXPECT_EQ(std::count_if(all.begin(), all.end(), [](const auto& note) { return note.rfind("cannot", 0) == 0; }), 1);
}

TEST(ArtNetOnLoopback, WhoLooksForNodesIsAnswered) {
    UniverseRecorder heard;
    DmxInPlan plan;
    plan.protocol = DmxProtocol::ArtNet;
    plan.universe = 0x0123;
    plan.port = FreeUdpPort();
    plan.address = QHostAddress(QStringLiteral("127.0.0.2"));
    DmxListener listener;
    listener.Open(listener.Add(plan, heard));
    ASSERT_TRUE(heard.notes.WaitFor("state"));
    QUdpSocket controller;
    ASSERT_TRUE(controller.bind(QHostAddress(QStringLiteral("127.0.0.3")), plan.port));
    const char poll[] = {'A', 'r', 't', '-', 'N', 'e', 't', 0, 0x00, 0x20, 0, 14, 0, 0};
    controller.writeDatagram(poll, sizeof(poll), plan.address, plan.port);
    ASSERT_TRUE(controller.waitForReadyRead(20000));
    QByteArray reply(1000, 0);
    reply.resize(static_cast<int>(controller.readDatagram(reply.data(), reply.size())));
    ASSERT_EQ(reply.size(), 239);
    EXPECT_EQ(reply.mid(8, 6).toHex(), QByteArray("00217f000002"));
    EXPECT_EQ(reply.mid(18, 2).toHex(), QByteArray("0102")); // net and sub-net
    EXPECT_EQ(reply.mid(190, 1).toHex(), QByteArray("03"));
}
