#include "ScriptReport.h"

#include <algorithm>
#include <climits>

#include <QFileInfo>
#include <QScriptEngine>
#include <QTimer>

#include "CallNotes.h"
#include "CommandIds.h"
#include "GrammarNotes.h"
#include "ObjectNotes.h"
#include "ScriptGlobals.h"
#include "ScriptNotes.h"
#include "ScriptSource.h"
#include "ScriptStopper.h"
#include "SettingNotes.h"

namespace {

ScriptProblem ProblemOf(const ScriptFault& fault) {
    return {fault.line, fault.what, {}, fault, false};
}

std::optional<ScriptProblem> FindProblem(QScriptEngine& engine, const QScriptValue& value, const QString& text) {
    if (engine.hasUncaughtException())
        return ProblemOf(FaultReader().Read(engine, engine.uncaughtException(), text));
    if (value.isError())
        return ScriptProblem{value.property(QStringLiteral("lineNumber")).toInt32(), value.toString(), {}, {}, false};
    return std::nullopt;
}

/// Stops what an engine runs after a time: a running engine lets its thread process events now and then.
class EngineLimit {
public:
    EngineLimit(QScriptEngine& engine, const QString& text, std::chrono::milliseconds limit)
        : m_engine(engine)
        , m_text(text)
        , m_limit(limit) {
        m_stopper.LookAt(text);
        if (limit.count() <= 0)
            return;
        engine.setProcessEventsInterval(kLookAtEventsMs);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { Stop(); });
        m_timer.start(limit);
    }

    /// Where the script was, when it has been stopped.
    std::optional<ScriptProblem> FindProblem() const {
        if (!m_stopper.HasStopped())
            return std::nullopt;
        const QString text = QStringLiteral("no answer within %1 ms").arg(m_limit.count());
        const ScriptFault fault = FaultReader().ReadStopped(m_engine, m_text);
        return ScriptProblem{std::max(fault.line, 0), text, {}, fault, true};
    }

private:
    static constexpr int kLookAtEventsMs = 10;
    static constexpr int kAgainMs = 5; // until nothing is left to be stopped

    void Stop() {
        m_timer.start(kAgainMs);
        m_stopper.Stop(m_engine);
    }

    QScriptEngine& m_engine;
    const QString m_text;
    const std::chrono::milliseconds m_limit;
    ScriptStopper m_stopper;
    QTimer m_timer;
};

/// All notes in the order of their lines; those without a line stand at the end.
QList<ScriptNote> TakeNotes(const QString& script, const QScriptValue& value, bool isOwnObject,
                            const ScanResult& published) {
    const ScriptSource source(script);
    QList<ScriptNote> notes;
    if (isOwnObject)
        notes = FindNotes(value, published, source);
    notes += FindSettingNotes(source, published.settings);
    notes += FindCallNotes(source);
    notes += FindGrammarNotes(script);
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

ScriptReport AnalyseScript(const QString& text, const QString& fileName, std::chrono::milliseconds limit) {
    ScriptReport report;
    report.info.fileName = QFileInfo(fileName).fileName();
    report.info.title = QFileInfo(fileName).baseName();
    QScriptEngine engine;
    SetUpAnalysisGlobals(engine);
    const EngineLimit watch(engine, text, limit);
    engine.pushContext(); // an engine takes an abort only while one of its contexts is open
    engine.pushContext();
    const QScriptValue value = engine.evaluate(text, QStringLiteral(""), 1);
    engine.popContext();
    report.problem = watch.FindProblem();
    if (!report.problem)
        report.problem = FindProblem(engine, value, text);
    if (report.problem)
        return report;
    report.info.Take(value);
    ScanRequest request;
    request.published = value;
    request.hiddenNames = value.strictlyEquals(engine.globalObject()) ? &BuiltInNames() : nullptr;
    report.published = ScanGlobal(request);
    AssignCommandIds({}, report.published.functions, false);
    report.notes = TakeNotes(text, value, request.hiddenNames == nullptr, report.published);
    report.problem = watch.FindProblem();
    return report;
}
