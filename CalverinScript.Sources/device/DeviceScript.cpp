#include "MCalverinScript_Device.h"

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

bool MCalverinScript_Device::ClearStateOnScriptThread() {
    return RunSlot(MarshalledCallTable::kClearScriptState, [this] {
        handlers->ClearAll();
        return true;
    });
}
