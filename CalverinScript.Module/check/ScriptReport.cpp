#include "ScriptReport.h"

#include <algorithm>
#include <climits>

#include <QFileInfo>
#include <QScriptEngine>

#include "CallNotes.h"
#include "CommandIds.h"
#include "ObjectNotes.h"
#include "ScriptGlobals.h"
#include "ScriptNotes.h"
#include "ScriptSource.h"
#include "SettingNotes.h"

namespace {

std::optional<ScriptProblem> FindProblem(QScriptEngine& engine, const QScriptValue& value) {
    if (engine.hasUncaughtException())
        return ScriptProblem{engine.uncaughtExceptionLineNumber(), engine.uncaughtException().toString()};
    if (value.isError())
        return ScriptProblem{value.property(QStringLiteral("lineNumber")).toInt32(), value.toString()};
    return std::nullopt;
}

/// All notes in the order of their lines; those without a line stand at the end.
QList<ScriptNote> TakeNotes(const ScriptSource& source, const QScriptValue& value, bool isOwnObject,
                            const ScanResult& published) {
    QList<ScriptNote> notes;
    if (isOwnObject)
        notes = FindNotes(value, published, source);
    notes += FindSettingNotes(source, published.settings);
    notes += FindCallNotes(source);
    notes +=
        FindObjectNotes(source, value.engine() == nullptr ? QScriptValue() : value.engine()->globalObject(), published);
    const auto place = [](const ScriptNote& note) { return note.line > 0 ? note.line : INT_MAX; };
    std::stable_sort(notes.begin(), notes.end(),
                     [&](const ScriptNote& left, const ScriptNote& right) { return place(left) < place(right); });
    return notes;
}

} // namespace

void GiveSettings(ScriptReport& report, const QStringList& words) {
    for (const QString& word : words) {
        for (MScriptSetting& setting : report.published.settings) {
            if (setting.name == word.section(QLatin1Char('='), 0, 0))
                setting.value = word.section(QLatin1Char('='), 1);
        }
    }
}

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
    report.notes = TakeNotes(ScriptSource(text), value, request.hiddenNames == nullptr, report.published);
    return report;
}
