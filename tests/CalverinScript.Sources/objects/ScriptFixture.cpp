#include "ScriptFixture.h"

#include <fstream>

#include <unistd.h>

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

long ScriptFixture::ResidentKilobytes() {
    std::ifstream statm("/proc/self/statm");
    long total = 0;
    long resident = 0;
    statm >> total >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}
