#pragma once

#include <QScriptValue>
#include <QString>
#include <QVector>

/// One own member of an object.
struct ScriptMember {
    QString name;
    QScriptValue value;
};

/// The object's own members in their order, as they are now, so that the object may be changed while they are walked. What the
/// language hides from a script's own walk (the length of an array) is left out. Nothing for a value that is no object.   [the thread of the value's engine]
QVector<ScriptMember> MembersOf(const QScriptValue& object);
