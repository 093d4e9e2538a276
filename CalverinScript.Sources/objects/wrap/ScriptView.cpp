#include "ScriptView.h"

namespace {

constexpr QScriptEngine::QObjectWrapOptions kHidden{int(QScriptEngine::ExcludeDeleteLater) |
                                                    int(QScriptEngine::ExcludeChildObjects) |
                                                    int(QScriptEngine::ExcludeSuperClassContents)};

} // namespace

QScriptValue WrapOwnedByHost(QScriptEngine& engine, QObject* object) {
    return engine.newQObject(object, QScriptEngine::QtOwnership, kHidden | QScriptEngine::PreferExistingWrapperObject);
}

QScriptValue WrapOwnedByScript(QScriptEngine& engine, QObject* object, int bytes) {
    engine.reportAdditionalMemoryCost(bytes);
    return engine.newQObject(object, QScriptEngine::ScriptOwnership, kHidden);
}
