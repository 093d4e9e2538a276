#pragma once

#include "Session.h"

namespace stagehost {

/// Looks at every command that a show sends, in steps, task lines, cues and loaded shows, to a device whose driver is
/// known: its commands are there before anything is started. What a script publishes is known only when it is sent.
/// @return the first one that the driver does not take, with its place in the show file.   [host main]
MaybeFailure CheckCommands(Session& session, const Show& show);

} // namespace stagehost
