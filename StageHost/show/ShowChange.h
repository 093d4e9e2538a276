#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "ObjectKinds.h"

namespace stagehost {

/// One change of an object of the show: a property has a new value. All texts are Latin-1.
struct ShowChange {
    std::uint64_t number = 0; ///< counts up by one for each change
    std::chrono::system_clock::time_point time;
    ObjectKind kind = ObjectKind::Variable;
    std::string object;
    std::string property; ///< "Value" for a variable
    std::string value;
};

} // namespace stagehost
