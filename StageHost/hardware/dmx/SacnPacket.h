#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "DmxLevels.h"
#include "PacketBytes.h"
#include "Refusal.h"

namespace stagehost {

/// @file
/// Data packets of streaming ACN, as ANSI E1.31-2018 lays them out: a root layer with the sender's identifier, a
/// framing layer with name, priority, sequence and universe, and a DMP layer with start code and levels.   [any]

inline constexpr std::uint16_t kSacnPort = 5568;
inline constexpr std::uint16_t kSacnLastUniverse = 63999;
inline constexpr std::uint8_t kSacnHighestPriority = 200;
inline constexpr std::uint8_t kSacnDefaultPriority = 100;

/// Component identifier: the same for all packets of one sender.
using SacnCid = std::array<std::uint8_t, 16>;

/// One data packet.
struct SacnPacket {
    SacnCid cid{};
    std::string sourceName; ///< UTF-8, at most 63 bytes count
    std::uint8_t priority = kSacnDefaultPriority;
    std::uint16_t syncAddress = 0; ///< 0: act at once
    std::uint8_t sequence = 0;
    bool preview = false;
    bool terminated = false; ///< the source ends; levels are not to be used
    bool forceSync = false;
    std::uint16_t universe = 1;
    std::uint8_t startCode = 0;
    DmxFrame frame;
};

/// The bytes of a packet.
std::vector<std::uint8_t> WriteSacn(const SacnPacket& packet);

/// Reads a packet. @param packet is changed only when the result is None; the frame's levels behind its count are 0.
/// Packets of synchronization and discovery are OtherKind.
Refusal ReadSacn(PacketView bytes, SacnPacket& packet);

/// The multicast group of a universe: 239.255.HIGH.LOW, as a number in host order.
std::uint32_t SacnGroup(std::uint16_t universe);

} // namespace stagehost
