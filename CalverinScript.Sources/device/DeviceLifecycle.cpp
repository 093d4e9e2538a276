#include "MCalverinScript_Device.h"

#include <algorithm>
#include <vector>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QGuiApplication>
#include <QImage>
#include <QScriptEngine>
#include <QThread>

#include "CommandNumbers.h"
#include "CommandRoad.h"
#include "ConfigFile.h"
#include "EventArguments.h"
#include "FaceAnswer.h"
#include "HostText.h"
#include "HostVisit.h"
#include "IManagerRuntimeInfo.h"
#include "IModuleServices.h"
#include "ISetupInterface.h"
#include "ModuleShared.h"
#include "MScriptEngineAgent.h"
#include "MScriptMngRemote.h"
#include "MScriptThread.h"
#include "RequestedStack.h"
#include "ScriptDebugger.h"
#include "ScriptGlobals.h"
#include "StoppableLoop.h"
#include "ThreadPromise.h"

namespace {

constexpr int kEngineEventIntervalMs = 10; ///< how often a running engine looks at its thread's events
constexpr std::uint32_t kThreadEndMs = 50; ///< what the end of a device grants its script
constexpr std::uint32_t kHostCallEndMs = 50;
constexpr std::uint32_t kDefaultUserMode = 2;
constexpr std::size_t kConfigPathSize = 1024;

/// Released devices whose script would not end. Host main thread alone.
std::vector<MCalverinScript_Device*>& AbandonedDevices() {
    static std::vector<MCalverinScript_Device*> devices;
    return devices;
}

/// Polls a condition that another thread makes true, for a time that a person does not notice.
template <typename Condition>
bool WaitUntil(Condition condition, std::uint32_t limitMs) {
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.hasExpired(limitMs))
            return false;
        QThread::usleep(200);
    }
    return true;
}

} // namespace

MCalverinScript_Device::MCalverinScript_Device(IModuleServices* moduleServices, ISetupInterface* setup,
                                               const char* name)
    : MyCommandManager(kCommandTimeoutMs, false, true)
    , module(moduleServices)
    , setupInterface(setup) {
    SweepAbandoned();
    MakeRoad(kRequestedStackSize);
    homeThread = QThread::currentThread();
    services = HostServices::Find(module != nullptr ? module->GetHost() : nullptr, this);
    MakeEngine();
    MCalverinScript_Device::SetName(name);
    JoinModule();
    ConnectSignals();
    if (debuggerEnabled)
        debugger = std::make_unique<ScriptDebugger>(*engine, *agent, entrance);
    else
        StartScriptThread();
    ModuleShared::Get()->tickTimer.AddHandler(this); // last: from here on the tick looks at all of it
}

void MCalverinScript_Device::MakeEngine() {
    engine = std::make_unique<QScriptEngine>(this);
    entrance.SetEngine(*engine);
    StoppableLoop::SetStopFlag(*engine, &ending);
    agent = new MScriptEngineAgent(engine.get(), this);
    live.engine = engine.get();
    remote =
        std::make_unique<MScriptMngRemote>(this, services.link, services.newerLink, services.variables, engine.get());
    remote->setParent(this);
    resources = std::make_unique<ResourceRoom>(*remote);
    SetUpScriptGlobals(*engine, *remote);
    eventArguments = std::make_unique<EventArguments>(*engine);
    engine->setProcessEventsInterval(kEngineEventIntervalMs);
}

void MCalverinScript_Device::JoinModule() {
    ModuleShared::Acquire();
    if (module == nullptr)
        return;
    char path[kConfigPathSize] = {};
    module->GetConfigFilePath(path);
    const bool hasWindows = qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
    debuggerEnabled = ReadConfigInt(path, "DEBUGGER", "enable", 0) != 0 && module->IsDebuggerAllowed() && hasWindows;
    connect(engine.get(), &QScriptEngine::signalHandlerException, this, &MCalverinScript_Device::SlotHandlerException);
}

void MCalverinScript_Device::StartScriptThread() {
    scriptThread = std::make_unique<MScriptThread>();
    scriptThread->SetRequestedStackSize(kRequestedStackSize);
    scriptThread->SetDevice(this);
    entrance.SetThread(scriptThread.get());
    moveToThread(scriptThread.get());
    scriptThread->start(QThread::InheritPriority);
}

bool MCalverinScript_Device::IsUsable() const {
    return scriptThread == nullptr || scriptThread->isRunning();
}

KXPCode MCalverinScript_Device::Start() {
    ExpectThread(ThreadWord::AnyHostThread, "IKXPDevice::Start");
    const HostVisit visit(*this);
    if (gone)
        return KXP_NOT_IMPLEMENTED;
    runState.startPending = true;
    runState.stopPending = false;
    remote->OnDeviceStart();
    SetRunning(true);
    SetStarted(true);
    road->Start();
    MTimerailManager::Reset();
    values.BindDefaultsUnlessBound(!storedSetup.IsRemovalApplied());
    const QString fileName = storedSetup.GetScriptFileName();
    if (!fileName.isEmpty())
        LoadScriptCommand(ToHostText(fileName).constData(), false);
    else
        EvaluateScriptCommand(storedSetup.GetScriptText(), false);
    if (panel != nullptr && setupInterface != nullptr) {
        auto* info =
            QueryFace<IManagerRuntimeInfo>(module != nullptr ? module->GetHost() : nullptr, "IManagerRuntimeInfo");
        setupInterface->PostRunState(panel, true, info != nullptr ? info->GetUserMode() : kDefaultUserMode);
    }
    return KXP_OK;
}

KXPCode MCalverinScript_Device::Stop() {
    ExpectThread(ThreadWord::AnyHostThread, "IKXPDevice::Stop");
    const HostVisit visit(*this);
    if (gone)
        return KXP_NOT_IMPLEMENTED;
    runState.stopPending = true;
    ClearScriptState();
    remote->EndContexts();
    ExecuteStopFunction();
    remote->RefuseWaits();
    runState.stopPending = false;
    runState.threadStopDone = true;
    if (entrance.IsInside() && debugger) {
        runState.threadStopDone = false;
        debugger->RequestAbort();
    }
    SetStarted(false);
    SetRunning(false);
    if (runState.threadStopDone)
        StopCommandThread();
    remote->ReleaseScriptObjects();
    road->ClearStackCount();
    if (panel != nullptr && setupInterface != nullptr)
        setupInterface->PostRunState(panel, false, 0);
    return KXP_OK;
}

void MCalverinScript_Device::StopCommandThread() {
    road->Stop();
    MTimerailManager::Reset();
}

KXPCode MCalverinScript_Device::Release() {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::Release");
    LetGo();
    if (WaitUntil([this] { return HasEnded(); }, kHostCallEndMs))
        delete this;
    else
        AbandonedDevices().push_back(this);
    SweepAbandoned();
    return KXP_OK;
}

void MCalverinScript_Device::LetGo() {
    if (gone.exchange(true))
        return;
    EndScriptThread();
    LeaveHost();
}

bool MCalverinScript_Device::HasEnded() const {
    const bool threadEnded =
        scriptThread != nullptr ? scriptThread->isFinished() && runState.threadLeft : !entrance.IsInside();
    return threadEnded && road->HasEnded() && !IsHostInside();
}

/// The ladder of a script thread's end: requests to the host end, the script is told to abort on its own thread, and what
/// does not end within its time is left alone, with everybody who waits for it let go.
void MCalverinScript_Device::EndScriptThread() {
    ending = true;
    entrance.Close();
    remote->EndContexts();
    remote->RefuseWaits();
    resources->LetGo();
    if (scriptThread == nullptr) {
        gate.Abandon();
        return;
    }
    entrance.WakeUp();
    scriptThread->quit();
    const bool ended = scriptThread->wait(kThreadEndMs) && runState.threadLeft;
    if (!ended)
        values.ForgetDefaults();
    gate.Abandon();
}

bool MCalverinScript_Device::IsHostInside() const {
    return hostCalls.Read() != 0 || remote->HasAnswersUnderWay();
}

/// From here on nothing of the host is used or used by this device.
void MCalverinScript_Device::LeaveHost() {
    if (ModuleShared* shared = ModuleShared::Get())
        shared->tickTimer.RemoveHandler(this);
    StopCommandThread();
    SetStarted(false);
    SetRunning(false);
    values.ForgetDefaults();
    if (module != nullptr)
        module->RemoveDevice(this);
    Unlist();
    if (MKXPDeviceBase::GetCount() == 0)
        ModuleShared::ReleaseLast();
}

std::size_t MCalverinScript_Device::SweepAbandoned() {
    std::vector<MCalverinScript_Device*>& devices = AbandonedDevices();
    const auto over = [](MCalverinScript_Device* device) {
        if (!device->HasEnded())
            return false;
        delete device;
        return true;
    };
    devices.erase(std::remove_if(devices.begin(), devices.end(), over), devices.end());
    return devices.size();
}

/// Runs when the script thread has ended, so everything that lived on it belongs to this thread now.
MCalverinScript_Device::~MCalverinScript_Device() = default;
