#include "SacnPacket.h"

#include <algorithm>

namespace stagehost {

namespace {

// Places of the fields, ANSI E1.31-2018 table 4-1.
namespace at {
constexpr std::size_t kRoot = 16; // where the length of the root layer is counted from
constexpr std::size_t kRootVector = 18;
constexpr std::size_t kCid = 22;
constexpr std::size_t kFraming = 38;
constexpr std::size_t kFramingVector = 40;
constexpr std::size_t kSourceName = 44;
constexpr std::size_t kPriority = 108;
constexpr std::size_t kSyncAddress = 109;
constexpr std::size_t kSequence = 111;
constexpr std::size_t kOptions = 112;
constexpr std::size_t kUniverse = 113;
constexpr std::size_t kDmp = 115;
constexpr std::size_t kDmpVector = 117;
constexpr std::size_t kDmpFormat = 118; // type of addresses and data, first address, increment
constexpr std::size_t kCount = 123;
constexpr std::size_t kStartCode = 125;
constexpr std::size_t kLevels = 126;
} // namespace at

constexpr std::size_t kNameSize = 64;
constexpr std::uint32_t kDataRoot = 4;
constexpr std::uint32_t kExtendedRoot = 8;
constexpr std::uint32_t kDataFraming = 2;
constexpr std::uint8_t kSetProperty = 2;
constexpr std::uint8_t kDmpFormat[] = {0xA1, 0, 0, 0, 1};
constexpr std::uint8_t kPreview = 0x80;
constexpr std::uint8_t kTerminated = 0x40;
constexpr std::uint8_t kForceSync = 0x20;

constexpr std::uint8_t kPreamble[] = {0, 0x10, 0, 0, 'A', 'S', 'C', '-', 'E', '1', '.', '1', '7', 0, 0, 0};
static_assert(sizeof(kPreamble) == at::kRoot, "the preamble stands before the root layer");

/// Flags 7 in the high four bits, the length from there on in the others.
constexpr std::size_t FlagsAndLength(std::size_t length) {
    return 0x7000 | length;
}

Refusal CheckLayers(const PacketView& bytes) {
    const std::uint32_t root = bytes.Big32(at::kRootVector);
    if (root == kExtendedRoot)
        return Refusal::OtherKind;
    if (root != kDataRoot)
        return Refusal::BadVector;
    if (bytes.size <= at::kStartCode)
        return Refusal::TooShort;
    if (bytes.size > at::kLevels + kUniverseSize)
        return Refusal::TooLong;
    if (bytes.Big32(at::kFramingVector) != kDataFraming || bytes.Byte(at::kDmpVector) != kSetProperty)
        return Refusal::BadVector;
    for (const std::size_t layer : {at::kRoot, at::kFraming, at::kDmp}) {
        if (bytes.Big16(layer) != FlagsAndLength(bytes.size - layer))
            return Refusal::BadLength;
    }
    return bytes.Big16(at::kCount) == bytes.size - at::kStartCode ? Refusal::None : Refusal::BadLength;
}

Refusal CheckFields(const PacketView& bytes) {
    if (!std::equal(std::begin(kDmpFormat), std::end(kDmpFormat), bytes.data + at::kDmpFormat))
        return Refusal::BadFormat;
    const std::uint16_t universe = bytes.Big16(at::kUniverse);
    if (universe == 0 || universe > kSacnLastUniverse)
        return Refusal::BadUniverse;
    return bytes.Byte(at::kPriority) > kSacnHighestPriority ? Refusal::BadPriority : Refusal::None;
}

std::uint8_t Options(const SacnPacket& packet) {
    return static_cast<std::uint8_t>((packet.preview ? kPreview : 0) | (packet.terminated ? kTerminated : 0) |
                                     (packet.forceSync ? kForceSync : 0));
}

} // namespace

std::vector<std::uint8_t> WriteSacn(const SacnPacket& packet) {
    const std::size_t count = packet.frame.count;
    std::vector<std::uint8_t> bytes(at::kLevels + count);
    std::uint8_t* data = bytes.data();
    std::copy(std::begin(kPreamble), std::end(kPreamble), data);
    for (const std::size_t layer : {at::kRoot, at::kFraming, at::kDmp})
        PutBig16(data + layer, FlagsAndLength(bytes.size() - layer));
    PutBig16(data + at::kRootVector + 2, kDataRoot);
    std::copy(packet.cid.begin(), packet.cid.end(), data + at::kCid);
    PutBig16(data + at::kFramingVector + 2, kDataFraming);
    PutText(data + at::kSourceName, kNameSize, packet.sourceName);
    data[at::kPriority] = packet.priority;
    PutBig16(data + at::kSyncAddress, packet.syncAddress);
    data[at::kSequence] = packet.sequence;
    data[at::kOptions] = Options(packet);
    PutBig16(data + at::kUniverse, packet.universe);
    data[at::kDmpVector] = kSetProperty;
    std::copy(std::begin(kDmpFormat), std::end(kDmpFormat), data + at::kDmpFormat);
    PutBig16(data + at::kCount, count + 1);
    data[at::kStartCode] = packet.startCode;
    std::copy_n(packet.frame.levels.begin(), count, data + at::kLevels);
    return bytes;
}

Refusal ReadSacn(PacketView bytes, SacnPacket& packet) {
    const std::size_t beginning = std::min(bytes.size, sizeof(kPreamble));
    if (!std::equal(kPreamble, kPreamble + beginning, bytes.data))
        return Refusal::NoSuchProtocol;
    if (bytes.size < at::kCid)
        return Refusal::TooShort;
    Refusal refusal = CheckLayers(bytes);
    if (refusal == Refusal::None)
        refusal = CheckFields(bytes);
    if (refusal != Refusal::None)
        return refusal;
    std::copy_n(bytes.data + at::kCid, packet.cid.size(), packet.cid.begin());
    packet.sourceName = bytes.Text(at::kSourceName, kNameSize);
    packet.priority = bytes.Byte(at::kPriority);
    packet.syncAddress = bytes.Big16(at::kSyncAddress);
    packet.sequence = bytes.Byte(at::kSequence);
    const std::uint8_t options = bytes.Byte(at::kOptions);
    packet.preview = (options & kPreview) != 0;
    packet.terminated = (options & kTerminated) != 0;
    packet.forceSync = (options & kForceSync) != 0;
    packet.universe = bytes.Big16(at::kUniverse);
    packet.startCode = bytes.Byte(at::kStartCode);
    packet.frame = {};
    packet.frame.count = bytes.size - at::kLevels;
    std::copy_n(bytes.data + at::kLevels, packet.frame.count, packet.frame.levels.begin());
    return Refusal::None;
}

std::uint32_t SacnGroup(std::uint16_t universe) {
    return 0xEFFF0000u | universe;
}

} // namespace stagehost
