#include "ScriptMembers.h"

#include <QScriptEngine>
#include <QScriptValueIterator>

#include "StoppableLoop.h"

namespace {

/// Whether the script has thrown. The exception is forgotten.
bool HasThrown(QScriptEngine* engine) {
    if (engine == nullptr || !engine->hasUncaughtException())
        return false;
    engine->clearExceptions();
    return true;
}

} // namespace

QVector<ScriptMember> MembersOf(const QScriptValue& object) {
    QVector<ScriptMember> members;
    if (!object.isObject())
        return members;
    QScriptValueIterator member(object);
    StoppableLoop loop(object.engine());
    while (member.hasNext() && loop.GoesOn()) {
        member.next();
        if (member.flags().testFlag(QScriptValue::SkipInEnumeration))
            continue;
        const QScriptValue value = member.value();
        if (!HasThrown(object.engine()))
            members.append({member.name(), value});
    }
    return members;
}

QScriptValue OwnMember(const QScriptValue& object, const QString& name) {
    if (!object.isObject())
        return QScriptValue();
    const QScriptValue value = object.property(name, QScriptValue::ResolveLocal);
    return HasThrown(object.engine()) ? QScriptValue() : value;
}

QString ScriptText(const QScriptValue& value) {
    const QString text = value.toString();
    return HasThrown(value.engine()) ? QString() : text;
}
