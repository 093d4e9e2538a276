#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "PacketBytes.h"
#include "Refusal.h"

namespace stagehost {

/// @file
/// How Art-Net finds its nodes: a controller sends ArtPoll, and each node answers with ArtPollReply. Many consoles send
/// levels only to nodes that have answered.   [any]

inline constexpr std::uint8_t kArtNetId[] = {'A', 'r', 't', '-', 'N', 'e', 't', 0};
inline constexpr std::uint16_t kArtNetVersion = 14;

/// Whether these bytes are an ArtPoll. @return None, or why they are not.
Refusal ReadArtPoll(PacketView bytes);

/// What a node tells of one universe that it takes from the network.
struct ArtPollReply {
    std::uint32_t address = 0; ///< of the node, in host order
    std::uint16_t port = 0;
    std::uint16_t universe = 0; ///< Port-Address
    std::uint8_t bindIndex = 1; ///< counts the replies of one node, from 1
    bool hasData = false;       ///< levels come in
    bool merging = false;       ///< from two sources
    std::string shortName;      ///< at most 17 bytes count
    std::string longName;       ///< at most 63 bytes count
    std::string report;         ///< in words, at most 63 bytes count
};

/// The 239 bytes of a reply.
std::vector<std::uint8_t> WriteArtPollReply(const ArtPollReply& reply);

} // namespace stagehost
