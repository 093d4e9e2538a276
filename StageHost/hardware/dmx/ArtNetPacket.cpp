#include "ArtNetPacket.h"

#include <algorithm>

#include "ArtNetPoll.h"

namespace stagehost {

namespace {

constexpr std::size_t kOperationAt = 8;
constexpr std::size_t kVersionAt = 10;
constexpr std::size_t kSequenceAt = 12;
constexpr std::size_t kPhysicalAt = 13;
constexpr std::size_t kUniverseAt = 14; // low byte first, unlike the other numbers
constexpr std::size_t kLengthAt = 16;
constexpr std::size_t kArtLevelsAt = 18;

} // namespace

Refusal ReadArtNetOperation(PacketView bytes, std::uint16_t& operation) {
    const std::size_t beginning = std::min(bytes.size, sizeof(kArtNetId));
    if (!std::equal(kArtNetId, kArtNetId + beginning, bytes.data))
        return Refusal::NoSuchProtocol;
    if (bytes.size < kVersionAt)
        return Refusal::TooShort;
    operation = bytes.Little16(kOperationAt);
    return Refusal::None;
}

std::vector<std::uint8_t> WriteArtDmx(const ArtDmxPacket& packet) {
    const std::size_t count = std::max<std::size_t>(2, packet.frame.count + packet.frame.count % 2);
    std::vector<std::uint8_t> bytes(kArtLevelsAt + count);
    std::uint8_t* data = bytes.data();
    std::copy(std::begin(kArtNetId), std::end(kArtNetId), data);
    PutLittle16(data + kOperationAt, static_cast<std::uint16_t>(ArtNetOperation::Dmx));
    PutBig16(data + kVersionAt, kArtNetVersion);
    data[kSequenceAt] = packet.sequence;
    data[kPhysicalAt] = packet.physical;
    PutLittle16(data + kUniverseAt, packet.universe);
    PutBig16(data + kLengthAt, count);
    std::copy_n(packet.frame.levels.begin(), count, data + kArtLevelsAt);
    return bytes;
}

Refusal ReadArtDmx(PacketView bytes, ArtDmxPacket& packet) {
    std::uint16_t operation = 0;
    const Refusal refusal = ReadArtNetOperation(bytes, operation);
    if (refusal != Refusal::None)
        return refusal;
    if (operation != static_cast<std::uint16_t>(ArtNetOperation::Dmx))
        return Refusal::OtherKind;
    if (bytes.size <= kArtLevelsAt)
        return Refusal::TooShort;
    if (bytes.size > kArtLevelsAt + kUniverseSize)
        return Refusal::TooLong;
    if (bytes.Big16(kVersionAt) < kArtNetVersion)
        return Refusal::BadVersion;
    const std::uint16_t universe = bytes.Little16(kUniverseAt);
    if (universe > kArtNetLastUniverse)
        return Refusal::BadUniverse;
    const std::size_t count = bytes.Big16(kLengthAt);
    if (count == 0 || count > bytes.size - kArtLevelsAt)
        return Refusal::BadLength;
    packet.sequence = bytes.Byte(kSequenceAt);
    packet.physical = bytes.Byte(kPhysicalAt);
    packet.universe = universe;
    packet.frame = {};
    packet.frame.count = count;
    std::copy_n(bytes.data + kArtLevelsAt, count, packet.frame.levels.begin());
    return Refusal::None;
}

} // namespace stagehost
