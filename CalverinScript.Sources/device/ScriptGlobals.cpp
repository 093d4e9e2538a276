#include "ScriptGlobals.h"

#include <QScriptContext>
#include <QScriptEngine>
#include <QScriptValueIterator>

#include "MScriptMngRemote.h"
#include "ScriptClasses.h"
#include "ScriptFacing.h"

namespace {

/// print(...): the texts of its arguments, a blank between them.
QScriptValue Print(QScriptContext* context, QScriptEngine* engine) {
    QStringList texts;
    for (int i = 0; i < context->argumentCount() && !engine->hasUncaughtException(); ++i)
        texts += context->argument(i).toString();
    auto* remote = qobject_cast<MScriptMngRemote*>(context->callee().data().toQObject());
    if (remote != nullptr && !engine->hasUncaughtException())
        remote->TraceMessage(texts.join(QLatin1Char(' ')), QStringLiteral("NORMAL"));
    return QScriptValue(QScriptValue::UndefinedValue);
}

} // namespace

void InstallPrint(QScriptEngine& engine, MScriptMngRemote& remote) {
    QScriptValue print = engine.newFunction(&ScriptFunction<&Print>);
    print.setData(engine.newQObject(&remote, QScriptEngine::QtOwnership, QScriptEngine::ExcludeDeleteLater));
    engine.globalObject().setProperty(QStringLiteral("print"), print, QScriptValue::SkipInEnumeration);
}

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
    auto* neutral = new ScriptFacing<MScriptMngRemote>(nullptr, nullptr, nullptr, nullptr, &engine);
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
