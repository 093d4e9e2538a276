#include "MCalverinScript_Device.h"

#include <algorithm>
#include <cstring>

#include <QFile>
#include <QFileInfo>
#include <QScriptEngine>

#include "CommandIds.h"
#include "DefinitionBuilder.h"
#include "HostText.h"
#include "IModuleServices.h"
#include "ModuleShared.h"

namespace {

/// Runs of four blanks became one where an older setup stored its script as plain text.
QString WithCondensedBlanks(QString text) {
    return text.replace(QStringLiteral("    "), QStringLiteral(" "));
}

bool IsSameCommand(const MScriptCommand& left, const MScriptCommand& right) {
    return left == right && HaveSameParams(left, right);
}

} // namespace

DeviceSetup MCalverinScript_Device::GetCurrentSetup() {
    DeviceSetup setup;
    setup.name = FromHostText(GetName());
    setup.userModeVisible = userModeVisible;
    setup.runModeVisible = runModeVisible;
    setup.settings = setupSettings.Snapshot();
    setup.monitors = variablesLive.Snapshot();
    SetupScript script;
    if (!setupScriptFileName.isEmpty() && QFileInfo::exists(setupScriptFileName))
        script.storedFileName = MakeStoredFileName(setupScriptFileName);
    script.text = setupScriptText;
    script.registerAllUserGroups = registerAllUserGroups;
    script.removeDefaults = removeDefaults;
    script.programmingMode = programmingMode;
    script.autoCompletion = autoCompletion;
    setup.script = script;
    return setup;
}

KXPCode MCalverinScript_Device::GetSetup(char** out) {
    if (out == nullptr)
        return KXP_NULL_ARGUMENT;
    DeviceSetup setup = GetCurrentSetup();
    if (IsFirstDevice())
        setup.moduleCommands = ModuleShared::Acquire().moduleCommands.Snapshot();
    setup.commands = commands.Snapshot();
    *out = strdup(PrintSetup(setup).c_str());
    return KXP_OK;
}

KXPCode MCalverinScript_Device::SetSetup(const char* text) {
    DeviceSetup setup;
    const KXPCode code = ReadSetup(text, setup);
    if (code != KXP_OK)
        return code;
    TakeStoredSetup(setup);
    QScriptEngine analysis;
    EvaluateScript(setupScriptText, &analysis);
    appliedRemoveDefaults = scriptOptionRemoveDefaults.value_or(removeDefaults);
    resources = FindResources(setupSettings.Snapshot(), analysis);
    AssignIds(false);
    std::string definition;
    const bool built =
        MakeDefinition(stop.functions.Snapshot(), variablesLive.Snapshot(), appliedRemoveDefaults, false, definition);
    if (built && OfferDefinition(definition)) {
        BindLiveVariables();
        CommitStopFunctions();
    }
    BindDefaultVariables();
    EvaluateScript(setupScriptText, &analysis);
    stop.global = QScriptValue();
    definitionCache = definition.c_str();
    setupLoaded = true;
    return KXP_OK;
}

void MCalverinScript_Device::TakeStoredSetup(const DeviceSetup& setup) {
    MKXPDeviceBase::SetName(ToHostText(setup.name).constData());
    userModeVisible = setup.userModeVisible.value_or(userModeVisible);
    runModeVisible = setup.runModeVisible.value_or(runModeVisible);
    ReplaceAll(setupSettings, setup.settings);
    ReplaceAll(variablesLive, setup.monitors);
    if (setup.moduleCommands && IsFirstDevice())
        for (const MScriptCommand& command : *setup.moduleCommands)
            ModuleShared::Acquire().moduleCommands.AddUnique(command);
    ReplaceAll(commands, setup.commands);
    if (setup.script)
        TakeStoredScript(*setup.script);
}

/// The script stays linked to its file only while the file says what was stored.
void MCalverinScript_Device::TakeStoredScript(const SetupScript& script) {
    const char* folder = folderManager != nullptr ? folderManager->GetFolder(KXP_FOLDER_PROJECT_USER_DATA) : nullptr;
    const QString path = ResolveStoredFileName(script.storedFileName, FromHostText(folder));
    QString fileName = QStringLiteral("");
    QString text = script.text;
    QFile file(path);
    if (!path.isEmpty() && file.open(QIODevice::ReadOnly)) {
        const QString fileText = FromScriptBytes(file.readAll());
        const QString storable = FromHostText(ToHostText(fileText).constData());
        if (text == fileText || text == storable || text == WithCondensedBlanks(fileText)) {
            fileName = path;
            text = fileText;
        }
    }
    TakeScript(fileName, text);
    registerAllUserGroups = script.registerAllUserGroups;
    removeDefaults = script.removeDefaults;
    programmingMode = script.programmingMode;
    autoCompletion = script.autoCompletion;
}

/// What the engine side shows is changed on its own thread, behind whatever runs there.
void MCalverinScript_Device::TakeScript(const QString& fileName, const QString& text) {
    SetSetupScript(fileName, text);
    PostTask([this, fileName, text] {
        const std::lock_guard<std::recursive_mutex> guard(mutex);
        live.scriptFileName = fileName;
        live.scriptText = text;
    });
}

bool MCalverinScript_Device::IsFirstDevice() const {
    MLockedList<MCalverinScript_Device*>* devices = module != nullptr ? module->GetDeviceList() : nullptr;
    MCalverinScript_Device* first = nullptr;
    return devices == nullptr || !devices->Get(0, first) || first == this;
}

void MCalverinScript_Device::AssignIds(bool keepOld) {
    ScriptCommands fresh = stop.functions.Snapshot();
    AssignCommandIds(ModuleShared::Acquire().moduleCommands.Snapshot(), fresh, keepOld);
    ReplaceAll(stop.functions, fresh);
}

void MCalverinScript_Device::CommitStopFunctions() {
    MLockedList<MScriptCommand>& shared = ModuleShared::Acquire().moduleCommands;
    ScriptCommands fresh = stop.functions.Snapshot();
    ScriptCommands moduleCommands = shared.Snapshot();
    ReplaceAll(commands, CommitCommands(fresh, moduleCommands));
    ReplaceAll(stop.functions, fresh);
    ReplaceAll(shared, moduleCommands);
}

bool MCalverinScript_Device::MakeDefinition(const ScriptCommands& definedCommands, const ScriptVariables& variables,
                                            bool hideDefaults, bool resetDefaultIds, std::string& text) {
    DefinitionRequest request;
    request.definitionTemplate = module != nullptr ? module->GetDefinitionTemplate() : nullptr;
    request.deviceNumber = moduleDeviceNumber;
    request.deviceVariables = deviceVariables;
    request.commands = definedCommands;
    request.variables = variables;
    request.hideDefaults = hideDefaults;
    request.resetDefaultIds = resetDefaultIds;
    return BuildDefinition(request, text);
}

/// The host drops the values that it has had for the device's variables when it takes a definition. So nothing of ours is inside one
/// meanwhile, and members of a running script stand for the new ones from then on. The default variables are bound again by the caller,
/// who knows then whether they are kept.
bool MCalverinScript_Device::OfferDefinition(const std::string& definition) {
    if (deviceVariables == nullptr)
        return false;
    bool taken = false;
    defaults.Unbind();
    accessors.GetGate().Replace([&] {
        taken = deviceVariables->SetDefinition(definition.c_str()) == 1;
        accessors.Rebind(VariableOrigin::Device, [this](const QString& name) { return FindOwnVariable(name); });
    });
    return taken;
}

IData* MCalverinScript_Device::FindOwnVariable(const QString& name) {
    return deviceVariables != nullptr ? deviceVariables->GetVariable(ToHostText(name).constData()) : nullptr;
}

/// The host's values of the device's variables, after it has taken their definition.
void MCalverinScript_Device::BindLiveVariables() {
    const std::lock_guard<MLockedList<MScriptVariable>> guard(variablesLive);
    for (MScriptVariable& variable : variablesLive) {
        variable.data = FindOwnVariable(variable.name);
        variable.instanceId = variable.data != nullptr ? variable.data->GetInstanceID() : 0;
    }
}

void MCalverinScript_Device::BeginSetup() {
    MergeLegacy();
    pendingRemoveDefaults = removeDefaults;
}

void MCalverinScript_Device::MergeLegacy() {
    ModuleShared& shared = ModuleShared::Acquire();
    if (shared.legacyModuleCommands == nullptr || module == nullptr || !module->IsHostAtLeast642())
        return;
    ScriptCommands inUse;
    if (auto* devices = module->GetDeviceList()) {
        const std::lock_guard<MLockedList<MCalverinScript_Device*>> guard(*devices);
        for (MCalverinScript_Device* device : *devices) {
            const ScriptCommands used = device->GetCommands();
            inUse.insert(inUse.end(), used.begin(), used.end());
        }
    }
    ScriptCommands moduleCommands = shared.moduleCommands.Snapshot();
    MergeLegacyCommands(inUse, shared.legacyModuleCommands->Snapshot(), moduleCommands);
    ReplaceAll(shared.moduleCommands, moduleCommands);
    shared.legacyModuleCommands.reset();
}

KXPCode MCalverinScript_Device::AcceptSetup(const DeviceSetup& setup, const QString& scriptFile) {
    pendingRemoveDefaults.reset();
    const SetupScript script = setup.script.value_or(SetupScript());
    const bool remove = scriptOptionRemoveDefaults.value_or(script.removeDefaults);
    AssignIds(true);
    const ScriptCommands before = commands.Snapshot();
    const ScriptCommands now = stop.functions.Snapshot();
    const bool sameCommands = std::equal(before.begin(), before.end(), now.begin(), now.end(), &IsSameCommand);
    const bool tellsChange = setupLoaded && (!sameCommands || remove != appliedRemoveDefaults);
    std::string definition;
    const bool taken = MakeDefinition(now, setup.monitors, remove, appliedRemoveDefaults && !remove, definition) &&
                       OfferDefinition(definition);
    if (taken) {
        appliedRemoveDefaults = remove;
        TakeAcceptedSetup(setup, script, scriptFile);
        definitionCache = definition.c_str();
        setupLoaded = true;
    }
    BindDefaultVariables();
    Analyse();
    if (!taken)
        return KXP_CANCELLED;
    return tellsChange ? KXPCode{KXP_COMMANDS_CHANGED} : KXPCode{KXP_OK};
}

void MCalverinScript_Device::TakeAcceptedSetup(const DeviceSetup& setup, const SetupScript& script,
                                               const QString& scriptFile) {
    if (!scriptOptionRemoveDefaults)
        removeDefaults = script.removeDefaults;
    userModeVisible = setup.userModeVisible.value_or(userModeVisible);
    runModeVisible = setup.runModeVisible.value_or(runModeVisible);
    registerAllUserGroups = script.registerAllUserGroups;
    programmingMode = script.programmingMode;
    autoCompletion = script.autoCompletion;
    TakeScript(scriptFile, script.text);
    ReplaceAll(setupSettings, setup.settings);
    ReplaceAll(variablesLive, setup.monitors);
    BindLiveVariables();
    CommitStopFunctions();
}

KXPCode MCalverinScript_Device::CancelSetup() {
    pendingRemoveDefaults.reset();
    BindDefaultVariables();
    Analyse();
    return KXP_CANCELLED;
}

/// Looks at the stored script again, so that the lists of the analysis are those of what the device keeps.
void MCalverinScript_Device::Analyse() {
    QScriptEngine analysis;
    EvaluateScript(setupScriptText, &analysis);
    resources = FindResources(setupSettings.Snapshot(), analysis);
    stop.global = QScriptValue();
}
