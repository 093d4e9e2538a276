#include "ScriptEvaluation.h"

#include <QFile>
#include <QScriptEngine>

#include "DeviceTexts.h"
#include "HostText.h"
#include "IProgramOwner.h"
#include "ScriptGlobals.h"

bool ReadScriptFile(ScriptSet& set, const char* fileName, IScriptReports& reports) {
    const QString path = FromHostText(fileName);
    QFile file(path);
    const bool read = fileName != nullptr && file.open(QIODevice::ReadOnly);
    set.scriptText = read ? FromScriptBytes(file.readAll()) : QStringLiteral("");
    if (!read)
        reports.ReportError(QLatin1String(DeviceText::kUnreadableFile), false);
    set.scriptFileName = path;
    reports.ReportScriptFile(set.scriptFileName);
    reports.ReportScriptText(set.scriptText);
    return read;
}

QScriptValue EvaluateText(QScriptEngine& engine, const QString& text) {
    engine.pushContext();
    const QScriptValue value = engine.evaluate(text, QStringLiteral(""), 1);
    engine.popContext();
    return value;
}

std::optional<EvaluationFailure> TakeFailure(QScriptEngine& engine, const QScriptValue& value) {
    if (engine.hasUncaughtException()) {
        const int line = engine.uncaughtExceptionLineNumber();
        const QString text = UncaughtAtLine(line, engine.uncaughtException().toString());
        engine.clearExceptions();
        return EvaluationFailure{text, line};
    }
    if (value.isError())
        return EvaluationFailure{ScriptFailure(MessageOf(value)), std::nullopt};
    return std::nullopt;
}

void Report(const EvaluationFailure& failure, bool stopMode, IScriptReports& reports) {
    reports.ReportError(failure.text, stopMode);
    if (failure.line)
        reports.ReportLine(*failure.line);
}

ScanResult ScanPublished(const ScriptSet& set, ScanRequest request) {
    request.published = set.global;
    request.hiddenNames = set.global.strictlyEquals(set.engine->globalObject()) ? &BuiltInNames() : nullptr;
    return ScanGlobal(request);
}

void Publish(ScriptSet& set, const ScanResult& found) {
    ReplaceAll(set.variables, found.variables);
    ReplaceAll(set.monitors, found.monitors);
    ReplaceAll(set.settings, found.settings);
    ReplaceAll(set.functions, found.functions);
}
