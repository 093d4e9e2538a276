#pragma once

#include "NoteTable.h"
#include "ScriptRecords.h"

class ScriptSource;

/// Settings that no line of the script seems to read. Silent where the script hands its `Setup` around in a way that
/// cannot be followed. A pure function.
QList<ScriptNote> FindSettingNotes(const ScriptSource& source, const ScriptSettings& settings);
