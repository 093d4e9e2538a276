#include "MCalverinScript_Device.h"

#include "CommandRoad.h"
#include "HostText.h"
#include "RunWithinMemory.h"
#include "SetupDesk.h"

bool MCalverinScript_Device::LoadScriptFromFile(IExecContext* context, const char* fileName, bool execute) {
    const ScriptRequest request = ScriptRequest::Load(kLoadFromFile, fileName);
    return execute ? road->Execute(request) : road->Post(request, context);
}

bool MCalverinScript_Device::LoadScriptFromText(IExecContext* context, const char* text, bool execute) {
    const ScriptRequest request = ScriptRequest::Load(kLoadFromText, text);
    return execute ? road->Execute(request) : road->Post(request, context);
}

bool MCalverinScript_Device::ExecuteScriptFunction(IExecContext* context, const char* name, bool execute) {
    const ScriptRequest request = ScriptRequest::Function(name);
    return execute ? road->Execute(request) : road->Post(request, context);
}

bool MCalverinScript_Device::ExecuteScriptFunctionWithParams(IExecContext* context, const char* name, IData* result,
                                                             const char** params, bool execute) {
    const ScriptRequest request = ScriptRequest::Function(name, result, params);
    return execute ? road->Execute(request) : road->Post(request, context);
}

bool MCalverinScript_Device::ExecuteCallBack(IExecContext* context, MyAsyncDeviceExecContext* asyncContext,
                                             bool execute) {
    const ScriptRequest request = ScriptRequest::Callback(asyncContext);
    return execute ? road->Execute(request) : road->Post(request, context);
}

void MCalverinScript_Device::PostAsyncResult(MyAsyncDeviceExecContext* context) {
    if (context == nullptr || RunWithinMemory([&] { road->Post(ScriptRequest::Callback(context), nullptr); }))
        return;
    TellWantOfMemory("an answer");
    RunWithinMemory([&] { DropAsyncResult(context); });
}

bool MCalverinScript_Device::ExecuteCommand(MCommandObject* command) {
    return road->ExecuteCommand(*command);
}

std::uint32_t MCalverinScript_Device::ThreadRun(MThread* thread) {
    road->Serve(*thread);
    return 0;
}

MCommandObject* MCalverinScript_Device::TakeExecutingCommand() {
    return road->TakeExecuting();
}

/// The default variables are looked up first, where they never were: a script that is loaded is shown in them.
void MCalverinScript_Device::RunStoredScript() {
    desk->BindDefaultsUnlessBound();
    const QString fileName = storedSetup.GetScriptFileName();
    if (!fileName.isEmpty())
        LoadScriptCommand(ToHostText(fileName).constData(), false);
    else
        EvaluateScriptCommand(storedSetup.GetScriptText(), false);
}

/// The host may release the device while it waits here.
bool MCalverinScript_Device::UpdateScript(const QString& fileName, const QString& text) {
    const HostDoor::Visit visit(door);
    if (door.IsClosed())
        return false;
    return fileName.isEmpty() ? EvaluateScriptCommand(text, false)
                              : LoadScriptCommand(ToHostText(fileName).constData(), false);
}
