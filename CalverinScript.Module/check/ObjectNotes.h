#pragma once

#include <QScriptValue>

#include "NoteTable.h"

class ScriptSource;
struct ScanResult;

/// Objects that a script makes: classes, events and members that do not exist, and objects that are made anew with each
/// call while those before go on. What an object is, is followed from where the script makes it; of others nothing is
/// said but what is likely.
/// @param global the engine's, after the script has run: what is there is no unknown class.   [the thread of its
/// engine]
QList<ScriptNote> FindObjectNotes(const ScriptSource& source, const QScriptValue& global, const ScanResult& published);
