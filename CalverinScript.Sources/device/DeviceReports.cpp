#include "MCalverinScript_Device.h"

#include <QScriptEngine>

#include "DeviceTexts.h"
#include "EvaluationFailure.h"
#include "HostText.h"
#include "Log.h"
#include "MScriptEngineAgent.h"

namespace {

constexpr int kExceptionLevel = 5;

} // namespace

void MCalverinScript_Device::ReportFailure(const EvaluationFailure& failure, bool stopMode) {
    ReportError(failure.text, stopMode);
    if (failure.line)
        Q_EMIT SignalNotifyLineErrorChange(*failure.line);
}

void MCalverinScript_Device::ReportUncaught() {
    const bool seenByAgent = dynamic_cast<MScriptEngineAgent*>(engine->agent()) != nullptr;
    if (!seenByAgent && engine->hasUncaughtException() && !ending)
        SlotHandlerException(engine->uncaughtException());
}

void MCalverinScript_Device::CheckUncaught() {
    if (engine->hasUncaughtException() && !ending)
        Q_EMIT SignalScriptError(engine->uncaughtException());
    engine->clearExceptions();
}

void MCalverinScript_Device::SlotHandlerException(const QScriptValue& exception) {
    const bool isError = exception.isError();
    const QString message = isError ? MessageOf(exception) : exception.toString();
    const QString line = isError ? exception.property(QStringLiteral("lineNumber")).toString()
                                 : QString::number(engine->uncaughtExceptionLineNumber());
    ReportError(ScriptFailure(message), false);
    if (!IsLogOn(false))
        return;
    const QString text = UncaughtForLog(line, message);
    WriteLog(LogHandle(), kExceptionLevel, "CalverinScript_ [%s] %s", CopyName().c_str(), ToHostText(text).constData());
}

void MCalverinScript_Device::ReportError(const QString& text, bool stopMode) {
    if (text.isNull())
        return;
    if (!stopMode)
        values.SetText(DefaultVariable::Error, text);
    Q_EMIT SignalNotifyErrorChange(text);
}
