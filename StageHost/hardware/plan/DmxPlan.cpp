#include "DmxPlan.h"

#include "ArtNetPacket.h"

namespace stagehost {

std::uint16_t DmxPlan::Port() const {
    if (port != 0)
        return port;
    return protocol == DmxProtocol::Sacn ? kSacnPort : kArtNetPort;
}

} // namespace stagehost
