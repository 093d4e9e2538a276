#pragma once

#include <functional>
#include <optional>
#include <string>

#include "KXPTypes.h"

namespace stagehost {

/// How a request of a script ended.
struct Reply {
    KXPCode code = KXP_OK;
    std::optional<std::string> text{}; ///< Latin-1; nothing when the operation gives no text or has failed
    std::string problem{};             ///< what failed, in words for people; scripts do not see it
};

/// Called once when a request is over, on any host thread, with no lock held.
using Answer = std::function<void(const Reply&)>;

} // namespace stagehost
