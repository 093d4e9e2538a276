#include "ScriptGlobals.h"

#include <QScriptEngine>
#include <QScriptValueIterator>

#include "MScriptMngRemote.h"

void SetUpScriptGlobals(QScriptEngine& engine, MScriptMngRemote& remote) {
    const QScriptEngine::QObjectWrapOptions hidden = QScriptEngine::ExcludeDeleteLater |
                                                     QScriptEngine::ExcludeChildObjects |
                                                     QScriptEngine::ExcludeSuperClassContents;
    const QScriptValue wrapper = engine.newQObject(&remote, QScriptEngine::QtOwnership, hidden);
    engine.globalObject().setProperty(QStringLiteral("QCalverin"), wrapper, QScriptValue::KeepExistingFlags);
}

const QSet<QString>& BuiltInNames() {
    static const QSet<QString> names = [] {
        QScriptEngine engine;
        MScriptMngRemote remote(nullptr, nullptr, nullptr, nullptr, &engine);
        SetUpScriptGlobals(engine, remote);
        QSet<QString> found;
        QScriptValueIterator member(engine.globalObject());
        while (member.hasNext()) {
            member.next();
            found.insert(member.name());
        }
        return found;
    }();
    return names;
}
