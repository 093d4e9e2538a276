#pragma once

#include "NoteTable.h"

/// What the engine takes of a script's text though it cannot be meant: the first place that is no ECMAScript, which it
/// passes over, and each "break" and "continue" that leads nowhere. A pure function.
QList<ScriptNote> FindGrammarNotes(const QString& script);
