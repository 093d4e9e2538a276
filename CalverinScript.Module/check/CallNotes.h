#pragma once

#include "ScriptNotes.h"

/// Calls of `QCalverin` in a script's text that do not exist, each with its line: they would fail when the script gets
/// there. Texts and comments are passed over. A pure function.
QList<ScriptNote> FindCallNotes(const QString& script);
