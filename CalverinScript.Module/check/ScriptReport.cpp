#include "ScriptReport.h"

#include <QFileInfo>
#include <QScriptEngine>

#include "CallNotes.h"
#include "CommandIds.h"
#include "ScriptGlobals.h"

namespace {

std::optional<ScriptProblem> FindProblem(QScriptEngine& engine, const QScriptValue& value) {
    if (engine.hasUncaughtException())
        return ScriptProblem{engine.uncaughtExceptionLineNumber(), engine.uncaughtException().toString()};
    if (value.isError())
        return ScriptProblem{value.property(QStringLiteral("lineNumber")).toInt32(), value.toString()};
    return std::nullopt;
}

} // namespace

ScriptReport AnalyseScript(const QString& text, const QString& fileName) {
    ScriptReport report;
    report.info.fileName = QFileInfo(fileName).fileName();
    report.info.title = QFileInfo(fileName).baseName();
    QScriptEngine engine;
    SetUpAnalysisGlobals(engine);
    engine.pushContext();
    const QScriptValue value = engine.evaluate(text, QString(), 1);
    engine.popContext();
    report.problem = FindProblem(engine, value);
    if (report.problem)
        return report;
    report.info.Take(value);
    ScanRequest request;
    request.published = value;
    request.hiddenNames = value.strictlyEquals(engine.globalObject()) ? &BuiltInNames() : nullptr;
    report.published = ScanGlobal(request);
    AssignCommandIds({}, report.published.functions, false);
    if (request.hiddenNames == nullptr)
        report.notes = FindNotes(value, report.published);
    report.notes += FindCallNotes(text);
    return report;
}
