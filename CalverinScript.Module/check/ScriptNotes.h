#pragma once

#include <QScriptValue>

#include "NoteTable.h"

class ScriptSource;
struct ScanResult;

/// What stands in the value of a script without effect, or not as it was meant: names in `Info` that it does not
/// publish, properties that do not fit, limits that shut out the default, members of which no variable, setting or
/// command is made. In the order of the script.   [the thread of the value's engine]
QList<ScriptNote> FindNotes(const QScriptValue& published, const ScanResult& result, const ScriptSource& source);
