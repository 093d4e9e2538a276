#pragma once

#include "DeviceDefinition.h"
#include "Show.h"

namespace stagehost {

/// What a step does that is no command of a device, for people.
QString ActionText(const ShowStep& step);

/// A step in one line: what it says, or its command with the parameters in the order that the command has them.
/// @param command null where it is not known; the parameters then stand by their names.
QString Headline(const ShowStep& step, const CommandDefinition* command);

} // namespace stagehost
