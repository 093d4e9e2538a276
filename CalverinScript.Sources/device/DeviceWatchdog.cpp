#include "MCalverinScript_Device.h"

#include <QAction>
#include <QScriptEngine>
#include <QScriptEngineDebugger>

#include "CommandRoad.h"
#include "HostVisit.h"
#include "MScriptMngRemote.h"

/// A tick may sit in a second execution when the device is released, and come back after the release.
void MCalverinScript_Device::OnTimer(std::uint32_t nowMs) {
    const HostVisit visit(*this);
    road->OnTick(nowMs);
    if (debuggerContinue && IsDebuggerActive())
        TriggerDebuggerAction(QScriptEngineDebugger::ContinueAction);
    if (debuggerAbort && IsDebuggerActive()) {
        debuggerAbort = false;
        AbortEvaluation();
    }
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

bool MCalverinScript_Device::IsDebuggerActive() const {
    return debugger != nullptr;
}

/// The debugger lives on the engine's thread, which serves its events also while the script is halted.
void MCalverinScript_Device::TriggerDebuggerAction(int action) {
    QAction* wanted = debugger->action(static_cast<QScriptEngineDebugger::DebuggerAction>(action));
    QMetaObject::invokeMethod(wanted, &QAction::trigger, Qt::QueuedConnection);
}

void MCalverinScript_Device::AbortEvaluation() {
    const auto abort = [this] {
        if (!entrance.IsInside())
            return;
        if (IsDebuggerActive() && debugger->state() != QScriptEngineDebugger::SuspendedState)
            for (const auto action : {QScriptEngineDebugger::ToggleBreakpointAction,
                                      QScriptEngineDebugger::ContinueAction, QScriptEngineDebugger::StepOutAction})
                debugger->action(action)->trigger();
        entrance.Abort();
    };
    QMetaObject::invokeMethod(this, abort, Qt::QueuedConnection);
}
