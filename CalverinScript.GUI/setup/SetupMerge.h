#pragma once

#include "ScriptRecords.h"

/// @file
/// How what a user has entered meets what the script declares now. Pure functions, callable on any thread.

/// Brings each declared variable up to what the dialog knows: the user's value and choice, and the host's value, of the
/// first variable of the same name, if it has the same type. A variable that changes its type loses them, one that is
/// no longer declared is gone.
/// @param declared receives the user's values. @param loaded as the device had them when the dialog was opened.
/// @return the dialog's new variables.
ScriptVariables MergeVariables(ScriptVariables& declared, const ScriptVariables& loaded, const ScriptVariables& edited);

/// Brings each declared setting up to what the user has entered in the first one of the same name. What a label says
/// is always the script's.
/// @param declared receives the user's values.
void MergeSettings(ScriptSettings& declared, const ScriptSettings& edited);
