#include "MCalverinScript_Device.h"

#include <QTimerEvent>

#include "DeviceMarshalling.h"
#include "ScriptAnalysis.h"
#include "ScriptHandlers.h"
#include "ScriptProgram.h"

/// As with an analysis, what is loaded for one touches nothing of the running script and does not wait for it.
bool MCalverinScript_Device::SlotLoadScriptCommand(const char* fileName, bool stopMode) {
    if (stopMode)
        return analysis->LoadFile(fileName);
    return RunSlot(MarshalledCallTable::kLoadScriptCommand, [&] { return program->LoadFile(fileName); });
}

bool MCalverinScript_Device::SlotEvaluateScriptCommand(const QString& text, bool stopMode) {
    return RunSlot(MarshalledCallTable::kEvaluateScriptCommand,
                   [&] { return stopMode ? analysis->LoadText(text) : program->LoadText(text); });
}

/// An analysis touches nothing of the running script, so it does not wait for it, and it completes no call that
/// somebody else waits for.
bool MCalverinScript_Device::SlotEvaluateScript(const QString& text, bool stopMode) {
    if (stopMode)
        return analysis->Run(text);
    return RunSlot(MarshalledCallTable::kEvaluateScript, [&] { return program->Evaluate(text); });
}

bool MCalverinScript_Device::Analyse(const QString& text, QScriptEngine& engine) {
    analysis->SetEngine(&engine);
    const bool result = SlotEvaluateScript(text, true);
    analysis->SetEngine(nullptr);
    return result;
}

bool MCalverinScript_Device::SlotExecuteScript_mStop() {
    return RunSlot(MarshalledCallTable::kExecuteStopFunction, [&] { return program->CallStop(); });
}

bool MCalverinScript_Device::SlotExecuteScriptFunction(const char* name, IData* result, const char** params) {
    return RunSlot(MarshalledCallTable::kExecuteScriptFunction,
                   [&] { return program->CallFunction(name, result, params); });
}

bool MCalverinScript_Device::SlotExecuteCallBack(MyAsyncDeviceExecContext* context) {
    return RunSlot(MarshalledCallTable::kExecuteCallBack, [&] {
        handlers->OnAnswer(context);
        return true;
    });
}

bool MCalverinScript_Device::SlotExecuteScriptEventCallBack(const QString& name, const MScriptParamList& params,
                                                            MScriptCommonEvent* event) {
    handlers->OnEvent(name, params, event);
    return false;
}

void MCalverinScript_Device::SlotOnPropertyChange(const QString& object, const QString& /*property*/,
                                                  const QString& value, bool /*objectFollows*/) {
    handlers->OnChange(object, value);
}

unsigned int MCalverinScript_Device::SlotSetPropertyChangeCallback(const QScriptValue& function) {
    if (!function.isFunction())
        return KXP_NOT_IMPLEMENTED;
    handlers->SetOnChange(function);
    return KXP_OK;
}

int MCalverinScript_Device::SlotSetInterval(const QScriptValue& expression, int delay) {
    return handlers->StartTimer(ScriptTimers::Kind::Interval, expression, delay);
}

void MCalverinScript_Device::SlotClearInterval(int id) {
    handlers->ClearTimer(ScriptTimers::Kind::Interval, id);
}

int MCalverinScript_Device::SlotSetTimeout(const QScriptValue& expression, int delay) {
    return handlers->StartTimer(ScriptTimers::Kind::TimeOut, expression, delay);
}

void MCalverinScript_Device::SlotClearTimeout(int id) {
    handlers->ClearTimer(ScriptTimers::Kind::TimeOut, id);
}

void MCalverinScript_Device::timerEvent(QTimerEvent* fired) {
    handlers->OnTimer(fired->timerId());
}

MyAsyncDeviceExecContext* MCalverinScript_Device::MakeAsyncContext(const QScriptValue& function) {
    return handlers->MakeRequest(function);
}

void MCalverinScript_Device::ForgetAsyncContext(MyAsyncDeviceExecContext* context) {
    handlers->ForgetRequest(context);
}

void MCalverinScript_Device::DropAsyncResult(MyAsyncDeviceExecContext* context) {
    handlers->DropAnswer(context);
}

bool MCalverinScript_Device::ClearStateOnScriptThread() {
    return RunSlot(MarshalledCallTable::kClearScriptState, [this] {
        handlers->ClearAll();
        return true;
    });
}
