#include "MCalverinScript_Device.h"

#include "CommandRoad.h"
#include "RunWithinMemory.h"
#include "ScriptProgram.h"
#include "ThreadPromise.h"

KXPCode MCalverinScript_Device::Start() {
    ExpectThread(ThreadWord::AnyHostThread, "IKXPDevice::Start");
    const HostDoor::Visit visit(door);
    if (!crossing.Entrance().IsOnScriptThread() && !road->IsOnThread()) // for which a stop may be waiting
        stops.AwaitStops();
    if (door.IsClosed())
        return KXP_NOT_IMPLEMENTED;
    if (!RunWithinMemory([this] { Begin(); }))
        TellWantOfMemory("the start");
    return KXP_OK;
}

void MCalverinScript_Device::Begin() {
    program->BeginStart();
    road->BeginRun();
    SetRunning(true);
    SetStarted(true);
    StartCommandThread();
    MTimerailManager::Reset();
    RunStoredScript();
    TellPanels(true);
}

KXPCode MCalverinScript_Device::Stop() {
    ExpectThread(ThreadWord::AnyHostThread, "IKXPDevice::Stop");
    const HostDoor::Visit visit(door);
    if (door.IsClosed())
        return KXP_NOT_IMPLEMENTED;
    const StopGate::Stop underWay(stops);
    if (!RunWithinMemory([this] { End(); }) && !RunWithinMemory([this] { End(); }))
        TellWantOfMemory("the stop");
    return KXP_OK;
}

/// May be done twice in a row: what the first time has ended is over for the second.
void MCalverinScript_Device::End() {
    program->BeginStop();
    ClearScriptState();
    program->EndRequests();
    ExecuteStopFunction();
    const bool isOver = program->EndStop();
    road->EndRun(); // a host may start anew as soon as it sees that nothing runs, and that would be another run
    SetStarted(false);
    SetRunning(false);
    if (isOver)
        StopCommandThread();
    program->ReleaseObjects();
    road->ClearStackCount();
    TellPanels(false);
}

/// A stop that was left open is completed first, unless that would be to wait for the caller's own script: then the tick
/// completes it, and starts the thread anew.
void MCalverinScript_Device::StartCommandThread() {
    if (!crossing.Entrance().IsOnScriptThread())
        program->FinishStop([this] { StopCommandThread(); });
    if (!program->IsStopOpen())
        road->Start();
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
    const bool hasFinished = program->FinishStop([this] { StopCommandThread(); });
    if (hasFinished && IsStarted())
        road->Start();
}
