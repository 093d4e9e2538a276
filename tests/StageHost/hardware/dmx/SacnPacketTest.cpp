#include "SacnPacket.h"

#include <gtest/gtest.h>

using namespace stagehost;

namespace {

using Bytes = std::vector<std::uint8_t>;

PacketView View(const Bytes& bytes) {
    return {bytes.data(), bytes.size()};
}

void Append(Bytes& bytes, std::initializer_list<int> more) {
    for (const int byte : more)
        bytes.push_back(static_cast<std::uint8_t>(byte));
}

/// A data packet of universe 258 with three channels, field by field.
Bytes ThreeChannels() {
    Bytes bytes;
    Append(bytes, {0x00, 0x10});                                            // preamble size
    Append(bytes, {0x00, 0x00});                                            // postamble size
    Append(bytes, {'A', 'S', 'C', '-', 'E', '1', '.', '1', '7', 0, 0, 0});  // ACN packet identifier
    Append(bytes, {0x70, 0x71});                                            // root: flags 7, length 129 - 16
    Append(bytes, {0x00, 0x00, 0x00, 0x04});                                // VECTOR_ROOT_E131_DATA
    Append(bytes, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}); // CID
    Append(bytes, {0x70, 0x5B});                                            // framing: flags 7, length 129 - 38
    Append(bytes, {0x00, 0x00, 0x00, 0x02});                                // VECTOR_E131_DATA_PACKET
    Append(bytes, {'D', 'e', 's', 'k'});                                    // source name, 64 bytes
    bytes.resize(bytes.size() + 60);
    Append(bytes, {150});              // priority
    Append(bytes, {0x1F, 0x40});       // synchronization address 8000
    Append(bytes, {0xFE});             // sequence
    Append(bytes, {0x20});             // options: force synchronization
    Append(bytes, {0x01, 0x02});       // universe 258
    Append(bytes, {0x70, 0x0E});       // DMP: flags 7, length 129 - 115
    Append(bytes, {0x02});             // VECTOR_DMP_SET_PROPERTY
    Append(bytes, {0xA1});             // address type and data type
    Append(bytes, {0x00, 0x00});       // first property address
    Append(bytes, {0x00, 0x01});       // address increment
    Append(bytes, {0x00, 0x04});       // property values: start code and 3 levels
    Append(bytes, {0x00});             // start code
    Append(bytes, {0x10, 0x80, 0xFF}); // levels
    return bytes;
}

SacnPacket TheSamePacket() {
    SacnPacket packet;
    for (std::size_t index = 0; index < packet.cid.size(); ++index)
        packet.cid[index] = static_cast<std::uint8_t>(index + 1);
    packet.sourceName = "Desk";
    packet.priority = 150;
    packet.syncAddress = 8000;
    packet.sequence = 0xFE;
    packet.forceSync = true;
    packet.universe = 258;
    packet.frame.count = 3;
    packet.frame.levels[0] = 0x10;
    packet.frame.levels[1] = 0x80;
    packet.frame.levels[2] = 0xFF;
    return packet;
}

Refusal Read(const Bytes& bytes) {
    SacnPacket packet;
    return ReadSacn(View(bytes), packet);
}

Refusal ReadWith(std::size_t at, int byte) {
    Bytes bytes = ThreeChannels();
    bytes.at(at) = static_cast<std::uint8_t>(byte);
    return Read(bytes);
}

} // namespace

TEST(SacnPacket, IsWrittenFieldByFieldAsPublished) {
    EXPECT_EQ(WriteSacn(TheSamePacket()), ThreeChannels());
}

TEST(SacnPacket, IsReadFieldByField) {
    SacnPacket packet;
    ASSERT_EQ(ReadSacn(View(ThreeChannels()), packet), Refusal::None);
    const SacnPacket expected = TheSamePacket();
    EXPECT_EQ(packet.cid, expected.cid);
    EXPECT_EQ(packet.sourceName, "Desk");
    EXPECT_EQ(packet.priority, 150);
    EXPECT_EQ(packet.syncAddress, 8000);
    EXPECT_EQ(packet.sequence, 0xFE);
    EXPECT_TRUE(packet.forceSync);
    EXPECT_FALSE(packet.preview);
    EXPECT_FALSE(packet.terminated);
    EXPECT_EQ(packet.universe, 258);
    EXPECT_EQ(packet.startCode, 0);
    EXPECT_EQ(packet.frame, expected.frame);
}

TEST(SacnPacket, OptionsStandInTheThreeHighestBits) {
    SacnPacket packet = TheSamePacket();
    packet.forceSync = false;
    packet.preview = true;
    EXPECT_EQ(WriteSacn(packet).at(112), 0x80);
    packet.preview = false;
    packet.terminated = true;
    EXPECT_EQ(WriteSacn(packet).at(112), 0x40);
    Bytes bytes = ThreeChannels();
    bytes.at(112) = 0xC0;
    ASSERT_EQ(ReadSacn(View(bytes), packet), Refusal::None);
    EXPECT_TRUE(packet.preview);
    EXPECT_TRUE(packet.terminated);
    EXPECT_FALSE(packet.forceSync);
}

TEST(SacnPacket, OfAWholeUniverseHas638Bytes) {
    SacnPacket packet = TheSamePacket();
    packet.frame.count = kUniverseSize;
    const Bytes bytes = WriteSacn(packet);
    EXPECT_EQ(bytes.size(), 638u);
    EXPECT_EQ(bytes.at(16), 0x72); // 622 bytes from there on
    EXPECT_EQ(bytes.at(17), 0x6E);
    SacnPacket read;
    ASSERT_EQ(ReadSacn(View(bytes), read), Refusal::None);
    EXPECT_EQ(read.frame, packet.frame);
}

TEST(SacnPacket, KeepsTheRootLengthOfTheLayersInStep) {
    for (const std::size_t at : {16u, 38u, 115u}) {
        EXPECT_EQ(ReadWith(at + 1, ThreeChannels().at(at + 1) + 1), Refusal::BadLength) << at;
        EXPECT_EQ(ReadWith(at, 0x60), Refusal::BadLength) << at << ": other flags";
    }
    EXPECT_EQ(ReadWith(124, 3), Refusal::BadLength);
    EXPECT_EQ(ReadWith(123, 2), Refusal::BadLength);
}

TEST(SacnPacket, OfAnotherVectorIsRefused) {
    EXPECT_EQ(ReadWith(21, 5), Refusal::BadVector);
    EXPECT_EQ(ReadWith(43, 1), Refusal::BadVector);
    EXPECT_EQ(ReadWith(117, 1), Refusal::BadVector);
}

TEST(SacnPacket, OfSynchronizationOrDiscoveryIsOfAnotherKind) {
    EXPECT_EQ(ReadWith(21, 8), Refusal::OtherKind);
    Bytes sync = ThreeChannels();
    sync.at(21) = 8;
    sync.resize(49);
    EXPECT_EQ(Read(sync), Refusal::OtherKind);
}

TEST(SacnPacket, OfAnotherFormatIsRefused) {
    for (const std::size_t at : {118u, 119u, 120u, 121u, 122u})
        EXPECT_EQ(ReadWith(at, 0x55), Refusal::BadFormat) << at;
}

TEST(SacnPacket, OfAUniverseThatCannotBeIsRefused) {
    Bytes bytes = ThreeChannels();
    bytes.at(113) = bytes.at(114) = 0;
    EXPECT_EQ(Read(bytes), Refusal::BadUniverse);
    bytes.at(113) = 0xFA; // 64000
    EXPECT_EQ(Read(bytes), Refusal::BadUniverse);
    bytes.at(113) = 0xF9; // 63999
    bytes.at(114) = 0xFF;
    EXPECT_EQ(Read(bytes), Refusal::None);
}

TEST(SacnPacket, OfAPriorityAbove200IsRefused) {
    EXPECT_EQ(ReadWith(108, 200), Refusal::None);
    EXPECT_EQ(ReadWith(108, 201), Refusal::BadPriority);
}

TEST(SacnPacket, OfAnotherProtocolIsRefused) {
    EXPECT_EQ(ReadWith(1, 0x11), Refusal::NoSuchProtocol);
    EXPECT_EQ(ReadWith(4, 'a'), Refusal::NoSuchProtocol);
    EXPECT_EQ(Read({'A', 'r', 't', '-', 'N', 'e', 't', 0}), Refusal::NoSuchProtocol);
}

TEST(SacnPacket, CutAnywhereIsRefusedAndReadsNothingBehindItsEnd) {
    const Bytes whole = ThreeChannels();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const Bytes cut(whole.begin(),
                        whole.begin() + static_cast<std::ptrdiff_t>(size)); // of its own: a read beyond shows
        const Refusal refusal = Read(cut);
        EXPECT_TRUE(refusal == Refusal::TooShort || refusal == Refusal::BadLength) << size;
    }
}

TEST(SacnPacket, LongerThanAUniverseIsRefused) {
    SacnPacket packet = TheSamePacket();
    packet.frame.count = kUniverseSize;
    Bytes bytes = WriteSacn(packet);
    bytes.push_back(0);
    EXPECT_EQ(Read(bytes), Refusal::TooLong);
    bytes.resize(65507);
    EXPECT_EQ(Read(bytes), Refusal::TooLong);
}

TEST(SacnPacket, ANameIsCutBetweenTwoCharacters) {
    SacnPacket packet = TheSamePacket();
    packet.sourceName = std::string(62, 'x') + "\xC3\xA4" + "y";
    const Bytes bytes = WriteSacn(packet);
    EXPECT_EQ(bytes.at(44 + 61), 'x');
    EXPECT_EQ(bytes.at(44 + 62), 0);
    EXPECT_EQ(bytes.at(44 + 63), 0);
    SacnPacket read;
    ASSERT_EQ(ReadSacn(View(bytes), read), Refusal::None);
    EXPECT_EQ(read.sourceName, std::string(62, 'x'));
}

TEST(SacnPacket, ANameWithoutAnEndIsReadToTheEndOfItsField) {
    Bytes bytes = ThreeChannels();
    std::fill(bytes.begin() + 44, bytes.begin() + 108, static_cast<std::uint8_t>('n'));
    SacnPacket read;
    ASSERT_EQ(ReadSacn(View(bytes), read), Refusal::None);
    EXPECT_EQ(read.sourceName, std::string(64, 'n'));
}

TEST(SacnPacket, TheGroupOfAUniverseHoldsItsNumber) {
    EXPECT_EQ(SacnGroup(1), 0xEFFF0001u);
    EXPECT_EQ(SacnGroup(63999), 0xEFFFF9FFu);
}
