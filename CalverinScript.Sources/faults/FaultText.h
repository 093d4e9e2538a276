#pragma once

#include <QStringList>

#include "ScriptFault.h"

/// A fault as people and programs read it, a line each:
///
///     lights.js:12:17: ReferenceError: Can't find variable: level
///     | var half = level / 2;
///     |            ^
///     at Fade (lights.js:12)
///     at the top level (lights.js:40)
///     note: what to write instead
///
/// Of many calls the first and the last are told. The column is missing where the engine tells the line alone.
/// @param file name of the script.   [any]
QStringList LinesOf(const ScriptFault& fault, const QString& file);
