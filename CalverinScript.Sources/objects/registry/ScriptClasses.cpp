#include "ScriptClasses.h"

#include <QScriptEngine>

#include "ByteArrayClass.h"
#include "Checksum.h"
#include "ScriptView.h"
#include "XMLDocument.h"

namespace {

QScriptValue MakeBuffer(QScriptEngine& engine) {
    return (new ByteArrayClass(&engine))->Constructor();
}

} // namespace

const std::array<ScriptClass, 3> kScriptClasses = {{{"XMLDocument", &ScriptConstructor<XMLDocument>},
                                                    {"Buffer", &MakeBuffer},
                                                    {"Checksum", &ScriptConstructor<Checksum>}}};

void InstallScriptClasses(QScriptEngine& engine) {
    for (const ScriptClass& scriptClass : kScriptClasses)
        engine.globalObject().setProperty(QString::fromLatin1(scriptClass.name), scriptClass.makeConstructor(engine),
                                          QScriptValue::KeepExistingFlags);
}
