#include "ScriptFixture.h"

#include "ScriptClasses.h"

ScriptFixture::ScriptFixture() {
    InstallScriptClasses(engine);
    const auto collect = [](QScriptContext*, QScriptEngine* caller) {
        caller->collectGarbage();
        return QScriptValue();
    };
    engine.globalObject().setProperty(QStringLiteral("gc"), engine.newFunction(collect));
}

std::string ScriptFixture::Run(const std::string& script) {
    const QScriptValue value = engine.evaluate(QString::fromStdString(script));
    const std::string text = value.toString().toStdString();
    if (!engine.hasUncaughtException())
        return text;
    engine.clearExceptions();
    return "threw " + text;
}

void ScriptFixture::Check(const std::vector<ScriptCase>& cases) {
    for (const ScriptCase& row : cases)
        EXPECT_EQ(Run(row.script), row.result) << row.sentence << "\n" << row.script;
}
