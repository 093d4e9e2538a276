#include "ArtNetPoll.h"

#include <algorithm>

#include "ArtNetPacket.h"

namespace stagehost {

namespace {

constexpr std::size_t kPollSize = 14;
constexpr std::size_t kReplySize = 239;

// Places in the reply.
constexpr std::size_t kIpAt = 10;
constexpr std::size_t kPortAt = 14;
constexpr std::size_t kNetAt = 18;
constexpr std::size_t kSubNetAt = 19;
constexpr std::size_t kOemAt = 20;
constexpr std::size_t kMakerAt = 24;
constexpr std::size_t kShortNameAt = 26;
constexpr std::size_t kLongNameAt = 44;
constexpr std::size_t kReportAt = 108;
constexpr std::size_t kPortCountAt = 172;
constexpr std::size_t kPortTypesAt = 174;
constexpr std::size_t kGoodOutputAt = 182;
constexpr std::size_t kOutputUniverseAt = 190;
constexpr std::size_t kBindIpAt = 207;
constexpr std::size_t kBindIndexAt = 211;
constexpr std::size_t kStatus2At = 212;

constexpr std::size_t kOemUnknown = 0x00FF;
constexpr std::size_t kMakerPrototype = 0x7FF0; // the range that ESTA keeps for prototypes
constexpr std::uint8_t kTakesLevels = 0x80;
constexpr std::uint8_t kGoodData = 0x80;
constexpr std::uint8_t kGoodMerging = 0x08;
constexpr std::uint8_t kLongPortAddress = 0x08; // 15 bits of Port-Address are understood

void PutBig32(std::uint8_t* at, std::uint32_t value) {
    PutBig16(at, value >> 16);
    PutBig16(at + 2, value & 0xFFFF);
}

} // namespace

Refusal ReadArtPoll(PacketView bytes) {
    std::uint16_t operation = 0;
    const Refusal refusal = ReadArtNetOperation(bytes, operation);
    if (refusal != Refusal::None)
        return refusal;
    if (operation != static_cast<std::uint16_t>(ArtNetOperation::Poll))
        return Refusal::OtherKind;
    return bytes.size < kPollSize ? Refusal::TooShort : Refusal::None;
}

std::vector<std::uint8_t> WriteArtPollReply(const ArtPollReply& reply) {
    std::vector<std::uint8_t> bytes(kReplySize);
    std::uint8_t* data = bytes.data();
    std::copy(std::begin(kArtNetId), std::end(kArtNetId), data);
    PutLittle16(data + sizeof(kArtNetId), static_cast<std::uint16_t>(ArtNetOperation::PollReply));
    PutBig32(data + kIpAt, reply.address);
    PutLittle16(data + kPortAt, reply.port);
    data[kNetAt] = static_cast<std::uint8_t>(reply.universe >> 8);
    data[kSubNetAt] = static_cast<std::uint8_t>(reply.universe >> 4 & 0x0F);
    PutBig16(data + kOemAt, kOemUnknown);
    PutLittle16(data + kMakerAt, kMakerPrototype);
    PutText(data + kShortNameAt, 18, reply.shortName);
    PutText(data + kLongNameAt, 64, reply.longName);
    PutText(data + kReportAt, 64, reply.report);
    PutBig16(data + kPortCountAt, 1);
    data[kPortTypesAt] = kTakesLevels;
    data[kGoodOutputAt] =
        static_cast<std::uint8_t>((reply.hasData ? kGoodData : 0) | (reply.merging ? kGoodMerging : 0));
    data[kOutputUniverseAt] = static_cast<std::uint8_t>(reply.universe & 0x0F);
    PutBig32(data + kBindIpAt, reply.address);
    data[kBindIndexAt] = reply.bindIndex;
    data[kStatus2At] = kLongPortAddress;
    return bytes;
}

} // namespace stagehost
