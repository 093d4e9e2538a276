#include "MCalverinScript_Device.h"

#include "CommandNumbers.h"
#include "HostCommands.h"
#include "HostText.h"
#include "IData.h"
#include "IExecContext.h"
#include "ThreadPromise.h"
#include "WithinMemory.h"

KXPCode MCalverinScript_Device::ExecuteCommand(std::int32_t id, IObjectParams* params, IExecContext* context) {
    ExpectThread(ThreadWord::AnyHostThread, "IKXPDevice::ExecuteCommand");
    const HostDoor::Visit visit(door); // the host may release the device when it is asked for a parameter's value
    if (!MayPost())
        return KXP_BAD_COMMAND;
    return WithinMemory(KXP_BAD_COMMAND, [&] { return hostCommands->Take(id, params, context); });
}

bool MCalverinScript_Device::MayPost() const {
    return !IsTracking() && !ending;
}

void MCalverinScript_Device::OnCommandCreated(void* context) {
    if (context != nullptr)
        static_cast<IExecContext*>(context)->Begin();
}

void MCalverinScript_Device::OnCommandDestroyed(void* context) {
    if (context != nullptr)
        static_cast<IExecContext*>(context)->End();
}

void MCalverinScript_Device::WriteCommandResult(MCommandObject* command, const QString& text) {
    if (command == nullptr || command->GetId() != kExecuteFunctionWithParams || ending)
        return;
    auto* result = static_cast<IData*>(command->GetVoidParam(kResultParam, nullptr));
    if (result != nullptr)
        result->SetValueFromString(ToHostText(text).constData(), 0, 0);
}
