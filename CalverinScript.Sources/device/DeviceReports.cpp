#include "MCalverinScript_Device.h"

#include <QScriptEngine>

#include "DeviceTexts.h"
#include "HostText.h"
#include "Log.h"
#include "MScriptEngineAgent.h"

namespace {

constexpr int kExceptionLevel = 5;

} // namespace

/// @return whether the evaluation succeeded.
bool MCalverinScript_Device::ReportEvaluation(ScriptSet& set, bool stopMode) {
    if (set.engine->hasUncaughtException()) {
        const int line = set.engine->uncaughtExceptionLineNumber();
        const QScriptValue exception = set.engine->uncaughtException();
        if (!stopMode)
            ReportUncaught();
        ReportError(UncaughtAtLine(line, exception.toString()), stopMode);
        Q_EMIT SignalNotifyLineErrorChange(line);
        set.engine->clearExceptions();
        return false;
    }
    if (set.global.isError()) {
        ReportError(ScriptFailure(MessageOf(set.global)), stopMode);
        return false;
    }
    return true;
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
