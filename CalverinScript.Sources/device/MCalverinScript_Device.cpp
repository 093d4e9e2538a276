#include "MCalverinScript_Device.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QImage>
#include <QScriptEngine>

#include "CommandNumbers.h"
#include "CommandRoad.h"
#include "ConfigFile.h"
#include "DeviceLinks.h"
#include "HostCommands.h"
#include "IModuleServices.h"
#include "ModuleShared.h"
#include "MScriptEngineAgent.h"
#include "RequestedStack.h"
#include "ScriptAnalysis.h"
#include "ScriptHandlers.h"
#include "ScriptProgram.h"
#include "ScriptWorld.h"
#include "SetupDesk.h"

/// Puts the rooms together. The tick comes last: from there on it looks at all of them.
MCalverinScript_Device::MCalverinScript_Device(IModuleServices* moduleServices, ISetupInterface* setup,
                                               const char* name)
    : MyCommandManager(kCommandTimeoutMs, false, true)
    , module(moduleServices)
    , setupInterface(setup)
    , services(HostServices::Find(module != nullptr ? module->GetHost() : nullptr, this))
    , values(ending)
    , door(values.Gate())
    , links(std::make_unique<Links>(*this))
    , analysisReports(std::make_unique<AnalysisReports>(*this))
    , crossing(
          mutex, ending, [this] { handlers->FireDeferred(); }, [this] { values.End(); },
          [this] { TellWantOfMemory("the script"); }, this)
    , world(std::make_unique<ScriptWorld>(
          ScriptWorld::Place{*this, *this, services, values, crossing.Entrance(), ending, *links}))
    , handlers(std::make_unique<ScriptHandlers>(*this, *world, crossing.Entrance()))
    , analysis(std::make_unique<ScriptAnalysis>(module, services, values, storedSetup, *analysisReports))
    , desk(std::make_unique<SetupDesk>(SetupDesk::Parts{module, services, door, values, world->GetSet(), storedSetup,
                                                        commands, *analysis, world->Resources(), *links, *links}))
    , program(std::make_unique<ScriptProgram>(
          ScriptProgram::Parts{*world, *handlers, values, storedSetup, services, *links}))
    , road(std::make_unique<CommandRoad>(*this, *this, *this, *links, kRequestedStackSize))
    , hostCommands(std::make_unique<HostCommands>(
          HostCommands::Parts{commands, *program, *road, values, *links, services.newerLink != nullptr}))
    , endings{&crossing, world.get(), &seat, road.get(), &values, &door} {
    SweepAbandoned();
    world->SetAgent(new MScriptEngineAgent(&world->Engine(), this));
    MCalverinScript_Device::SetName(name);
    ModuleShared::Acquire();
    ConnectSignals();
    if (WantsDebugger())
        world->EnableDebugger();
    else
        crossing.StartThread(*this);
    seat.Take();
}

/// Runs when the script thread has ended, so everything that lived on it belongs to this thread now.
MCalverinScript_Device::~MCalverinScript_Device() = default;

void MCalverinScript_Device::ConnectSignals() {
    qRegisterMetaType<MScriptParamList>("MScriptParamList");
    connect(this, &MCalverinScript_Device::SignalShowDebugger, this, &MCalverinScript_Device::SlotShowDebugger);
    connect(&world->Engine(), &QScriptEngine::signalHandlerException, this,
            &MCalverinScript_Device::SlotHandlerException);
}

bool MCalverinScript_Device::WantsDebugger() const {
    if (module == nullptr)
        return false;
    char path[IModuleServices::kConfigPathSize] = {};
    module->GetConfigFilePath(path);
    const bool hasWindows = qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
    return ReadConfigInt(path, "DEBUGGER", "enable", 0) != 0 && module->IsDebuggerAllowed() && hasWindows;
}

MScriptMngRemote* MCalverinScript_Device::GetRemote() const {
    return &world->Remote();
}

QScriptEngine* MCalverinScript_Device::GetEngine() const {
    return &world->Engine();
}

std::int32_t MCalverinScript_Device::GetStackCount() const {
    return road->GetStackCount();
}

bool MCalverinScript_Device::HasStopFunction() const {
    return program->HasStopFunction();
}
