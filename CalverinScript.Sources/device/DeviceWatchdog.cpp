#include "MCalverinScript_Device.h"

#include "CommandRoad.h"
#include "HostVisit.h"
#include "MScriptMngRemote.h"
#include "ScriptDebugger.h"

/// A tick may sit in a second execution when the device is released, and come back after the release.
void MCalverinScript_Device::OnTimer(std::uint32_t nowMs) {
    const HostVisit visit(*this);
    road->OnTick(nowMs);
    if (debugger)
        debugger->Tick();
    if (runState.stopRequested)
        FinishRequestedStop();
    if (MKXPDeviceBase::IsRunning())
        remote->Tick();
}

/// Waits for nobody: while the script runs it is tried again at the next tick.
void MCalverinScript_Device::FinishRequestedStop() {
    if (!mutex.try_lock())
        return;
    mutex.unlock();
    StopCommandThread();
    runState.threadStopDone = true;
    runState.stopRequested = false;
}
