#pragma once

#include <cstdint>
#include <optional>

#include <QHostAddress>
#include <QNetworkInterface>
#include <QString>

#include "SacnPacket.h"
#include "UniverseOut.h"

namespace stagehost {

enum class DmxProtocol { Sacn, ArtNet };

/// Names of the protocols in show files, in the order of the enumeration.
inline constexpr const char* kDmxProtocolNames[] = {"sacn", "artnet"};

/// What is the same for both directions of a universe.
struct DmxPlan {
    DmxProtocol protocol = DmxProtocol::Sacn;
    std::uint16_t universe = 1; ///< 1 to 63999 for sACN, 0 to 32767 for Art-Net
    std::uint16_t port = 0;     ///< of UDP; 0: that of the protocol
    bool multicast = false;     ///< sACN: by the universe's group instead of an address
    QString networkInterface;   ///< for the group, by its name; empty: the system's choice

    std::uint16_t Port() const;
    /// The group of the universe.
    QHostAddress Group() const { return QHostAddress(SacnGroup(universe)); }
    QNetworkInterface Interface() const { return QNetworkInterface::interfaceFromName(networkInterface); }
};

/// A universe that goes out.
struct DmxOutPlan : DmxPlan {
    QHostAddress address{QHostAddress::LocalHost};
    std::uint8_t priority = kSacnDefaultPriority;
    std::string sourceName = "stagehost";
    int rate = kFastestDmxRate; ///< frames a second at most, from 1
    bool continuous = false;

    QHostAddress Target() const { return multicast ? Group() : address; }
};

/// A universe that comes in.
struct DmxInPlan : DmxPlan {
    QHostAddress address{QHostAddress::LocalHost}; ///< where it is heard, unless by the group
};

} // namespace stagehost
