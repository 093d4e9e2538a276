#pragma once

#include <chrono>

#include "Session.h"
#include "SetupText.h"

namespace stagehost {

/// Looks into a driver's script with the check program beside this one.   [host main]
/// @param show its folder of the project's user data decides whether the script stays linked to its file.
/// @param edition receives the script and what it publishes.
MaybeFailure ReadDriver(const Show& show, const QString& path, std::chrono::milliseconds limit, DriverEdition& edition);

/// A script with the files that go in front of it.
struct WholeScript {
    QString text{};
    bool isOneFile = true;
    QStringList files{}; ///< all of them when they are several
};

/// Reads a script file. One that is put together of several is checked on the way, so what is wrong in them is told
/// here; what is wrong in one that stands alone is told by whoever runs it.
MaybeFailure ReadWhole(const QString& path, std::chrono::milliseconds limit, WholeScript& script);

/// ReadDriver for the script of a device, be it a driver, a script or a text; it has one of them.
MaybeFailure ReadScriptOf(const ShowDevice& device, const Show& show, std::chrono::milliseconds limit,
                          DriverEdition& edition);

} // namespace stagehost
