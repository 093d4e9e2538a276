#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "ChannelPlan.h"
#include "DmxPlan.h"
#include "SerialSettings.h"

namespace stagehost {

/// A serial port of the system.
struct SerialPlan {
    QString port;            ///< such as /dev/ttyUSB0
    SerialSettings settings; ///< before a device has set any
};

/// One resource of a show: what stands behind a number that scripts know.
struct ResourceSpec {
    std::int32_t id = 0;
    std::string name; ///< Latin-1
    std::variant<SerialPlan, DmxOutPlan, DmxInPlan, ChannelsPlan> plan;
};

using HardwareSpec = std::vector<ResourceSpec>;

} // namespace stagehost
