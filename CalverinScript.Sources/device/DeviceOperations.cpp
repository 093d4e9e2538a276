#include "MCalverinScript_Device.h"

#include "CommandRoad.h"
#include "HostText.h"
#include "MScriptMngRemote.h"

/// What the command road needs of this device.
class MCalverinScript_Device::RoadWork final : public ICommandWork {
public:
    explicit RoadWork(MCalverinScript_Device& device)
        : m_device(device) {}

    std::string GetRoadName() override { return m_device.CopyName(); }
    bool MayPost() const override { return m_device.MayPost(); }
    bool Run(const ScriptRequest& request) override;
    void ShowStatus(DeviceStatus status) override { m_device.SetStatus(status); }
    void ShowError(const char* text) override { m_device.ReportError(FromHostText(text), false); }
    void OnCommandOver() override { m_device.remote->SetPostponeAllowed(false); }
    void DropAnswer(MyAsyncDeviceExecContext* answer) override { m_device.DropAsyncResult(answer); }

private:
    MCalverinScript_Device& m_device;
};

bool MCalverinScript_Device::RoadWork::Run(const ScriptRequest& request) {
    ScriptRequest own = request;
    switch (request.id) {
    case kLoadFromFile:
        return m_device.LoadScriptCommand(request.text, false);
    case kLoadFromText:
        return m_device.EvaluateScriptCommand(FromHostText(request.text), false);
    case kExecuteFunction:
        return m_device.ExecuteScriptFunction(request.text, nullptr, nullptr);
    case kExecuteFunctionWithParams:
        return m_device.ExecuteScriptFunction(request.text, request.result, own.params.data());
    case kScriptCallback:
        return m_device.ExecuteCallBack(request.answer);
    default:
        return false;
    }
}

void MCalverinScript_Device::MakeRoad(std::size_t threadStackSize) {
    roadWork = std::make_unique<RoadWork>(*this);
    road = std::make_unique<CommandRoad>(*this, *this, *this, *roadWork, threadStackSize);
}

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
    if (context != nullptr)
        road->Post(ScriptRequest::Callback(context), nullptr);
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

std::int32_t MCalverinScript_Device::GetStackCount() const {
    return road->GetStackCount();
}
