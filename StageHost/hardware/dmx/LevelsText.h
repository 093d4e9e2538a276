#pragma once

#include <string>

#include "DmxLevels.h"

namespace stagehost {

/// @file
/// The levels of a universe for people, channels counted from 1 as on every desk: "1=255 7-9=128"; channels that are
/// not named are 0.

std::string LevelsText(const DmxFrame& frame);

/// Reads such a text. @return false when it is none; then the frame is as it was.
bool ReadLevels(const std::string& text, DmxFrame& frame);

} // namespace stagehost
