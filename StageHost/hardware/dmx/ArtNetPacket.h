#pragma once

#include <cstdint>
#include <vector>

#include "DmxLevels.h"
#include "PacketBytes.h"
#include "Refusal.h"

namespace stagehost {

/// @file
/// ArtDmx, the packet of Art-Net 4 that carries the levels of one universe.   [any]

inline constexpr std::uint16_t kArtNetPort = 6454;
/// The universe's number is a Port-Address of 15 bits: net (7), sub-net (4), universe (4).
inline constexpr std::uint16_t kArtNetLastUniverse = 0x7FFF;

/// One ArtDmx packet.
struct ArtDmxPacket {
    std::uint8_t sequence = 0; ///< 1 to 255; 0: the sender does not count
    std::uint8_t physical = 0; ///< the sender's input, which tells two streams of one sender apart
    std::uint16_t universe = 0;
    DmxFrame frame;
};

/// The operation codes that are understood here.
enum class ArtNetOperation : std::uint16_t { Poll = 0x2000, PollReply = 0x2100, Dmx = 0x5000 };

/// Reads what all packets begin with. @return None when operation holds the code, whatever it is.
Refusal ReadArtNetOperation(PacketView bytes, std::uint16_t& operation);

/// The bytes of a packet. An odd count is sent with one level more, as the protocol wants an even one.
std::vector<std::uint8_t> WriteArtDmx(const ArtDmxPacket& packet);

/// Reads an ArtDmx packet; any other kind is OtherKind. @param packet is changed only when the result is None.
/// Bytes behind the levels are ignored up to the longest packet, since senders exist that always send all of it.
Refusal ReadArtDmx(PacketView bytes, ArtDmxPacket& packet);

} // namespace stagehost
