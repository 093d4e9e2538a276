#pragma once

#include "NoteTable.h"

class ScriptSource;

/// Members of `QCalverin` in a script's text that do not exist, and calls with fewer or more arguments than they take,
/// each with its line. A pure function.
QList<ScriptNote> FindCallNotes(const ScriptSource& source);
