#include "MCalverinScript_Device.h"

#include <QAction>
#include <QScriptEngine>
#include <QScriptEngineDebugger>

#include "CommandNumbers.h"
#include "HostCall.h"
#include "Log.h"
#include "MScriptMngRemote.h"

namespace {

constexpr std::int32_t kExecutionsPerCommand = 2;
constexpr int kTimeoutLevel = 5;

} // namespace

/// A tick may sit in a second execution when the device is released, and come back after the release.
void MCalverinScript_Device::OnTimer(std::uint32_t /*nowMs*/) {
    const HostCall call(*this);
    CheckExpiredCommand();
    if (debuggerContinue && IsDebuggerActive())
        TriggerDebuggerAction(QScriptEngineDebugger::ContinueAction);
    if (debuggerAbort && IsDebuggerActive()) {
        debuggerAbort = false;
        AbortEvaluation();
    }
    if (stopRequested)
        FinishRequestedStop();
    if (MKXPDeviceBase::IsRunning())
        remote->Tick();
}

/// A held command is executed once more after its time; after the second time it is given up.
void MCalverinScript_Device::CheckExpiredCommand() {
    MCommandObject* command = nullptr;
    if (!CheckCommandTimeout(&command))
        return;
    if (command->IncrementRetries() < kExecutionsPerCommand)
        ExecuteCurrentCommand();
    else
        GiveUpCommand(command);
    UnlockCurrentCommand();
}

void MCalverinScript_Device::GiveUpCommand(MCommandObject* command) {
    ReportError(QStringLiteral("Command Timeout."), false);
    SetStatus(DeviceStatus::Ready);
    if (IsLogOn(false))
        WriteLog(LogHandle(), kTimeoutLevel, "CalverinScript_ [%s] Command Timeout ID : %d", GetName(),
                 command != nullptr ? command->GetId() : -1);
    FinishCurrentCommand(nullptr);
    stackCount.Decrement();
    if (TakeNextCommand() == kCommandDone)
        ExecuteCurrentCommand();
}

/// Waits for nobody: while the script runs it is tried again at the next tick.
void MCalverinScript_Device::FinishRequestedStop() {
    if (!mutex.try_lock())
        return;
    mutex.unlock();
    StopCommandThread();
    threadStopDone = true;
    stopRequested = false;
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
