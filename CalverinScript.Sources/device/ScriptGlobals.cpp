#include "ScriptGlobals.h"

#include <QScriptEngine>
#include <QScriptValueIterator>

#include "MScriptMngRemote.h"
#include "ScriptClasses.h"

void SetUpScriptGlobals(QScriptEngine& engine, MScriptMngRemote& remote) {
    const QScriptEngine::QObjectWrapOptions hidden = QScriptEngine::ExcludeDeleteLater |
                                                     QScriptEngine::ExcludeChildObjects |
                                                     QScriptEngine::ExcludeSuperClassContents;
    const QScriptValue wrapper = engine.newQObject(&remote, QScriptEngine::QtOwnership, hidden);
    engine.globalObject().setProperty(QStringLiteral("QCalverin"), wrapper, QScriptValue::KeepExistingFlags);
    InstallScriptClasses(engine);
}

void SetUpAnalysisGlobals(QScriptEngine& engine) {
    if (engine.findChild<MScriptMngRemote*>() != nullptr)
        return;
    auto* neutral = new MScriptMngRemote(nullptr, nullptr, nullptr, nullptr, &engine);
    neutral->setParent(&engine);
    SetUpScriptGlobals(engine, *neutral);
}

const QSet<QString>& BuiltInNames() {
    static const QSet<QString> names = [] {
        QScriptEngine engine;
        SetUpAnalysisGlobals(engine);
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
