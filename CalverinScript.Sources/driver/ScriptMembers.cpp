#include "ScriptMembers.h"

#include <QScriptValueIterator>

QVector<ScriptMember> MembersOf(const QScriptValue& object) {
    QVector<ScriptMember> members;
    if (!object.isObject())
        return members;
    QScriptValueIterator member(object);
    while (member.hasNext()) {
        member.next();
        if (!member.flags().testFlag(QScriptValue::SkipInEnumeration))
            members.append({member.name(), member.value()});
    }
    return members;
}
