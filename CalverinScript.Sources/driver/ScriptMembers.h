#pragma once

#include <QScriptValue>
#include <QString>
#include <QVector>

/// @file
/// Reading objects of a script. Getters and `toString` of the script may run, and may throw: what cannot be read counts
/// as not there, and the exception is forgotten.   [the thread of the value's engine]

/// One own member of an object.
struct ScriptMember {
    QString name;
    QScriptValue value;
};

/// The object's own members in their order, as they are now, so that the object may
/// be changed while they are walked. What the language hides from a script's own
/// walk (the length of an array) is left out. Nothing for a value that is no object.
QVector<ScriptMember> MembersOf(const QScriptValue& object);

/// The object's own member of that name; invalid when there is none.
QScriptValue OwnMember(const QScriptValue& object, const QString& name);

/// The value as text; null when the script refuses to give it.
QString ScriptText(const QScriptValue& value);
