#pragma once

#include "ScriptParts.h"
#include "ScriptReport.h"

/// Analyses a driver with the files that go in front of it. Each file has to be a script by itself, so that a mistake
/// is told in the file where it is; lines are those of the files. A driver that cannot be put together has its problem.
/// @param file the driver as it was named.   [the main thread]
ScriptReport AnalyseDriver(const ScriptParts& parts, const QString& file,
                           std::chrono::milliseconds limit = std::chrono::milliseconds(0));
