#pragma once

#include <QList>
#include <QScriptValue>
#include <QString>

struct ScanResult;

/// One thing that a script says and that comes to nothing.
struct ScriptNote {
    QString where; ///< "Info.Variables.Level.Type"
    QString text;
};

/// What stands in the value of a script without effect: names in `Info` that it does
/// not publish, properties that do not fit, members of which no variable, setting or
/// command is made. In the order of the script.   [the thread of the value's engine]
QList<ScriptNote> FindNotes(const QScriptValue& published, const ScanResult& result);
