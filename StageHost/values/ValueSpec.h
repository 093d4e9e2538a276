#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "KXPTypes.h"

namespace stagehost {

/// What a typed value is before it lives: type, limits and first content, as a device definition or a show file tells
/// it. All texts are Latin-1. Limits that do not belong to the type are ignored.
struct ValueSpec {
    std::uint32_t type = KXP_STRING_DATA;
    std::string name;
    std::int32_t id = 0;                           ///< number within a command; unused for variables
    std::uint32_t instanceId = 0;                  ///< number of a variable, 0 to have one allocated
    std::string text;                              ///< first content in the text form of the type
    std::optional<double> minimum;                 ///< numbers, inclusive
    std::optional<double> maximum;                 ///< numbers, inclusive
    std::int32_t maxLength = -1;                   ///< texts: characters, -1 for no limit
    std::int32_t precision = 5;                    ///< real numbers: decimals of the text form, 0 to 15
    std::int32_t timeCodeType = 4;                 ///< times: 0 to 5, see TimeCode.h
    std::vector<std::string> items;                ///< enumerations, in order of their index
    std::map<std::string, std::string> properties; ///< descriptor properties
};

} // namespace stagehost
