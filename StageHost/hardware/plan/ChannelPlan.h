#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace stagehost {

/// Kinds of channels, numbered as the contract has them.
enum class ChannelType { DigitalOut, DigitalIn, AnalogOut, AnalogIn };

inline constexpr std::size_t kChannelTypeCount = 4;

/// Names of the kinds in show files, in the order of the enumeration.
inline constexpr const char* kChannelTypeNames[kChannelTypeCount] = {"digitalOut", "digitalIn", "analogOut",
                                                                     "analogIn"};

constexpr bool IsDigital(ChannelType type) {
    return type == ChannelType::DigitalOut || type == ChannelType::DigitalIn;
}

constexpr bool IsOutput(ChannelType type) {
    return type == ChannelType::DigitalOut || type == ChannelType::AnalogOut;
}

/// One channel as the show file tells it. Its name is Latin-1.
struct ChannelPlan {
    std::string name;
    std::int32_t value = 0; ///< at the beginning
    std::int32_t minimum = 0;
    std::int32_t maximum = 1;
};

/// The channels of one resource by their kind; their number is their place there.
using ChannelsPlan = std::array<std::vector<ChannelPlan>, kChannelTypeCount>;

} // namespace stagehost
