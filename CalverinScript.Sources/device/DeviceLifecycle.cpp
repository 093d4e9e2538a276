#include "MCalverinScript_Device.h"

#include "CommandRoad.h"
#include "ScriptProgram.h"
#include "ThreadPromise.h"

KXPCode MCalverinScript_Device::Start() {
    ExpectThread(ThreadWord::AnyHostThread, "IKXPDevice::Start");
    const HostDoor::Visit visit(door);
    if (door.IsClosed())
        return KXP_NOT_IMPLEMENTED;
    program->BeginStart();
    SetRunning(true);
    SetStarted(true);
    road->Start();
    MTimerailManager::Reset();
    RunStoredScript();
    TellPanel(true);
    return KXP_OK;
}

KXPCode MCalverinScript_Device::Stop() {
    ExpectThread(ThreadWord::AnyHostThread, "IKXPDevice::Stop");
    const HostDoor::Visit visit(door);
    if (door.IsClosed())
        return KXP_NOT_IMPLEMENTED;
    program->BeginStop();
    ClearScriptState();
    program->EndRequests();
    ExecuteStopFunction();
    const bool isOver = program->EndStop();
    SetStarted(false);
    SetRunning(false);
    if (isOver)
        StopCommandThread();
    program->ReleaseObjects();
    road->ClearStackCount();
    TellPanel(false);
    return KXP_OK;
}

void MCalverinScript_Device::StopCommandThread() {
    road->Stop();
    MTimerailManager::Reset();
}

/// A tick may sit in a second execution when the device is released, and come back after the release.
void MCalverinScript_Device::OnTimer(std::uint32_t /*nowMs*/) {
    const HostDoor::Visit visit(door);
    road->OnTick();
    program->ServeDebugger();
    if (program->WantsStop())
        FinishRequestedStop();
    if (MKXPDeviceBase::IsRunning())
        program->ServeBridge();
}

/// Waits for nobody: while the script runs it is tried again at the next tick.
void MCalverinScript_Device::FinishRequestedStop() {
    if (!mutex.try_lock())
        return;
    mutex.unlock();
    StopCommandThread();
    program->OnStopped();
}
