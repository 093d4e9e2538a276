#include "ArtNetPacket.h"

#include <gtest/gtest.h>

#include "ArtNetPoll.h"

using namespace stagehost;

namespace {

using Bytes = std::vector<std::uint8_t>;

const Bytes kFourChannels = {
    'A',  'r',  't',  '-',  'N', 'e', 't', 0, // ID
    0x00, 0x50,                               // OpDmx, low byte first
    0x00, 0x0E,                               // protocol 14
    0x07,                                     // sequence
    0x02,                                     // physical
    0x34,                                     // sub-net 3, universe 4
    0x12,                                     // net 18
    0x00, 0x04,                               // length
    0x01, 0x80, 0xFF, 0x00,                   // levels
};

Refusal Read(const Bytes& bytes, ArtDmxPacket& packet) {
    return ReadArtDmx({bytes.data(), bytes.size()}, packet);
}

Refusal ReadWith(std::size_t at, int byte) {
    Bytes bytes = kFourChannels;
    bytes.at(at) = static_cast<std::uint8_t>(byte);
    ArtDmxPacket packet;
    return Read(bytes, packet);
}

} // namespace

TEST(ArtNetPacket, IsWrittenFieldByFieldAsPublished) {
    ArtDmxPacket packet;
    packet.sequence = 7;
    packet.physical = 2;
    packet.universe = 0x1234;
    packet.frame.count = 4;
    packet.frame.levels = {0x01, 0x80, 0xFF, 0x00};
    EXPECT_EQ(WriteArtDmx(packet), kFourChannels);
}

TEST(ArtNetPacket, IsReadFieldByField) {
    ArtDmxPacket packet;
    ASSERT_EQ(Read(kFourChannels, packet), Refusal::None);
    EXPECT_EQ(packet.sequence, 7);
    EXPECT_EQ(packet.physical, 2);
    EXPECT_EQ(packet.universe, 0x1234);
    EXPECT_EQ(packet.frame.count, 4u);
    EXPECT_EQ(packet.frame.levels[1], 0x80);
    EXPECT_EQ(packet.frame.levels[4], 0);
}

TEST(ArtNetPacket, AnOddCountIsSentWithOneLevelMore) {
    ArtDmxPacket packet;
    packet.frame.count = 3;
    packet.frame.levels = {1, 2, 3};
    const Bytes bytes = WriteArtDmx(packet);
    EXPECT_EQ(bytes.size(), 22u);
    EXPECT_EQ(bytes.at(17), 4);
}

TEST(ArtNetPacket, OfAWholeUniverseHas530Bytes) {
    ArtDmxPacket packet;
    packet.frame.count = kUniverseSize;
    EXPECT_EQ(WriteArtDmx(packet).size(), 530u);
}

TEST(ArtNetPacket, OfALengthThatDoesNotFitIsRefused) {
    EXPECT_EQ(ReadWith(17, 0), Refusal::BadLength);
    EXPECT_EQ(ReadWith(17, 5), Refusal::BadLength);
    EXPECT_EQ(ReadWith(16, 2), Refusal::BadLength);
    EXPECT_EQ(ReadWith(17, 2), Refusal::None); // senders exist that always send all channels
}

TEST(ArtNetPacket, OfAnotherKindOrVersionOrProtocolIsRefused) {
    EXPECT_EQ(ReadWith(9, 0x52), Refusal::OtherKind);
    EXPECT_EQ(ReadWith(11, 13), Refusal::BadVersion);
    EXPECT_EQ(ReadWith(11, 15), Refusal::None);
    EXPECT_EQ(ReadWith(0, 'a'), Refusal::NoSuchProtocol);
}

TEST(ArtNetPacket, OfAUniverseOf16BitsIsRefused) {
    EXPECT_EQ(ReadWith(15, 0x80), Refusal::BadUniverse);
    EXPECT_EQ(ReadWith(15, 0x7F), Refusal::None);
}

TEST(ArtNetPacket, CutAnywhereIsRefusedAndReadsNothingBehindItsEnd) {
    for (std::size_t size = 0; size < kFourChannels.size(); ++size) {
        const Bytes cut(kFourChannels.begin(), kFourChannels.begin() + static_cast<std::ptrdiff_t>(size));
        ArtDmxPacket packet;
        const Refusal refusal = Read(cut, packet);
        EXPECT_TRUE(refusal == Refusal::TooShort || refusal == Refusal::BadLength) << size;
    }
}

TEST(ArtNetPacket, LongerThanAUniverseIsRefused) {
    Bytes bytes = kFourChannels;
    bytes.resize(531);
    ArtDmxPacket packet;
    EXPECT_EQ(Read(bytes, packet), Refusal::TooLong);
}

TEST(ArtNetPoll, IsKnownByItsOperation) {
    Bytes poll = {'A', 'r', 't', '-', 'N', 'e', 't', 0, 0x00, 0x20, 0x00, 0x0E, 0x02, 0x00};
    EXPECT_EQ(ReadArtPoll({poll.data(), poll.size()}), Refusal::None);
    EXPECT_EQ(ReadArtPoll({poll.data(), 13}), Refusal::TooShort);
    EXPECT_EQ(ReadArtPoll({kFourChannels.data(), kFourChannels.size()}), Refusal::OtherKind);
}

TEST(ArtNetPoll, TheReplyTellsOneUniverseFieldByField) {
    ArtPollReply reply;
    reply.address = 0x7F000002;
    reply.port = 6454;
    reply.universe = 0x1234;
    reply.bindIndex = 3;
    reply.hasData = true;
    reply.merging = true;
    reply.shortName = "a name that is too long";
    reply.longName = "stagehost universe 4660";
    reply.report = "#0001";
    const Bytes bytes = WriteArtPollReply(reply);
    ASSERT_EQ(bytes.size(), 239u);
    const auto part = [&](std::size_t from, std::size_t count) {
        return Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(from),
                     bytes.begin() + static_cast<std::ptrdiff_t>(from + count));
    };
    EXPECT_EQ(part(0, 8), (Bytes{'A', 'r', 't', '-', 'N', 'e', 't', 0}));
    EXPECT_EQ(part(8, 2), (Bytes{0x00, 0x21}));    // OpPollReply
    EXPECT_EQ(part(10, 4), (Bytes{127, 0, 0, 2})); // address
    EXPECT_EQ(part(14, 2), (Bytes{0x36, 0x19}));   // port 0x1936, low byte first
    EXPECT_EQ(part(18, 2), (Bytes{0x12, 0x03}));   // net, sub-net
    EXPECT_EQ(part(20, 2), (Bytes{0x00, 0xFF}));   // OemUnknown
    EXPECT_EQ(part(26, 18),
              (Bytes{'a', ' ', 'n', 'a', 'm', 'e', ' ', 't', 'h', 'a', 't', ' ', 'i', 's', ' ', 't', 'o', 0}));
    EXPECT_EQ(part(44, 9), (Bytes{'s', 't', 'a', 'g', 'e', 'h', 'o', 's', 't'}));
    EXPECT_EQ(part(172, 2), (Bytes{0, 1}));          // ports
    EXPECT_EQ(part(174, 4), (Bytes{0x80, 0, 0, 0})); // takes levels from the network
    EXPECT_EQ(part(182, 4), (Bytes{0x88, 0, 0, 0})); // has data, merges
    EXPECT_EQ(part(190, 4), (Bytes{0x04, 0, 0, 0})); // universe within the sub-net
    EXPECT_EQ(part(207, 4), (Bytes{127, 0, 0, 2}));  // address of the root device
    EXPECT_EQ(bytes.at(211), 3);                     // bind index
    EXPECT_EQ(bytes.at(212), 0x08);                  // 15 bits of Port-Address
}
