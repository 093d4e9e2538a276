#pragma once

#include <chrono>

#include <QProcess>

#include "Session.h"

namespace stagehost {

/// Runs the module's check program, which lies beside this one, on a script. A script that takes that program down, or
/// keeps it, does no harm here, and it does not outlive an interrupt.   [host main]
/// @param process says where the output goes; holds the exit code and the output afterwards.
/// @param further options of that program beside its time limit, such as "--json".
MaybeFailure RunChecker(QProcess& process, const QString& file, const QStringList& further,
                        std::chrono::milliseconds limit);

} // namespace stagehost
