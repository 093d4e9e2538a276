#pragma once

#include <chrono>

#include "Session.h"
#include "SetupText.h"

namespace stagehost {

/// Looks into a driver's script with the check program beside this one.   [host main]
/// @param show its folder of the project's user data decides whether the script stays linked to its file.
/// @param edition receives the script and what it publishes.
MaybeFailure ReadDriver(const Show& show, const QString& path, std::chrono::milliseconds limit, DriverEdition& edition);

/// The same for the script of a device, be it a driver, a script or a text; it has one of them.
MaybeFailure ReadScriptOf(const ShowDevice& device, const Show& show, std::chrono::milliseconds limit,
                          DriverEdition& edition);

} // namespace stagehost
