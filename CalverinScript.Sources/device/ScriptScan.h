#pragma once

#include "ScriptSet.h"

/// @file
/// Reading back what a script publishes from the value of its evaluation. Runs on the thread of the set's engine.

/// Replaces the set's lists by what its global value publishes. A value that is no object publishes nothing; of the engine's
/// own global object only those members count that the script has added.
void ScanGlobal(ScriptSet& set);

/// The command that a script function becomes: a parameter "Result" with direction out, then the function's own with direction
/// in, as its source text names them.
MScriptCommand CommandFromFunction(const QString& name, const QString& sourceText);
