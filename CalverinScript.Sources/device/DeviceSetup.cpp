#include "MCalverinScript_Device.h"

#include <algorithm>
#include <cstring>

#include <QFile>
#include <QFileInfo>
#include <QScriptEngine>

#include "CommandIds.h"
#include "DefinitionBuilder.h"
#include "DeviceTexts.h"
#include "HostText.h"
#include "IModuleServices.h"
#include "ModuleShared.h"
#include "ThreadPromise.h"

namespace {

/// Runs of four blanks became one where an older setup stored its script as plain text.
QString WithCondensedBlanks(QString text) {
    return text.replace(QStringLiteral("    "), QStringLiteral(" "));
}

bool IsSameCommand(const MScriptCommand& left, const MScriptCommand& right) {
    return left == right && HaveSameParams(left, right);
}

} // namespace

void MCalverinScript_Device::SetSetupScript(const QString& fileName, const QString& text) {
    storedSetup.SetScript(fileName, text);
}

void MCalverinScript_Device::SetSetupSettings(const QList<MScriptSetting>& settings) {
    ReplaceAll(storedSetup.Settings(), settings);
}

void MCalverinScript_Device::SetRegisterAllUserGroups(bool enabled) {
    SetupChoices choices = storedSetup.GetChoices();
    choices.registerAllUserGroups = enabled;
    storedSetup.SetChoices(choices);
}

void MCalverinScript_Device::BindDefaultVariables() {
    values.BindDefaults(!storedSetup.IsRemovalApplied());
}

DeviceSetup MCalverinScript_Device::GetCurrentSetup() {
    DeviceSetup setup = storedSetup.Describe();
    setup.name = FromHostText(GetName());
    return setup;
}

/// A text that SetSetup would refuse is not given out, so that the host keeps the one that it has.
KXPCode MCalverinScript_Device::GetSetup(char** out) {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::GetSetup");
    if (out == nullptr)
        return KXP_NULL_ARGUMENT;
    *out = nullptr;
    if (gone)
        return KXP_NOT_IMPLEMENTED;
    DeviceSetup setup = GetCurrentSetup();
    if (IsFirstDevice())
        setup.moduleCommands = ModuleShared::Acquire().moduleCommands.Snapshot();
    setup.commands = storedSetup.GetCommands();
    const std::string text = PrintSetup(setup);
    if (!IsStorable(text)) {
        ReportError(QLatin1String(DeviceText::kSetupTooLarge), false);
        return KXP_NOT_IMPLEMENTED;
    }
    *out = strdup(text.c_str());
    return KXP_OK;
}

KXPCode MCalverinScript_Device::SetSetup(const char* text) {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::SetSetup");
    if (gone)
        return KXP_NOT_IMPLEMENTED;
    DeviceSetup setup;
    const KXPCode code = ReadSetup(text, setup);
    if (!setup.name.isNull())
        MKXPDeviceBase::SetName(ToHostText(setup.name).constData());
    if (code != KXP_OK)
        return code;
    TakeStoredSetup(setup);
    QScriptEngine analysis;
    EvaluateScript(storedSetup.GetScriptText(), &analysis);
    storedSetup.ApplyRemoval(storedSetup.DecideRemoval(storedSetup.GetChoices().removeDefaults));
    ResolveResources(storedSetup.GetSettings());
    AssignIds(false);
    std::string definition;
    const bool built = MakeDefinition(stop.functions.Snapshot(), storedSetup.GetVariables(),
                                      storedSetup.IsRemovalApplied(), false, definition);
    const bool taken = built && values.Offer(definition);
    if (gone) // the host has released the module meanwhile
        return KXP_NOT_IMPLEMENTED;
    if (taken) {
        BindLiveVariables();
        CommitStopFunctions();
    }
    BindDefaultVariables();
    if (analysisEnded) // a second look at a script that does not end would take as long again
        EvaluateScript(storedSetup.GetScriptText(), &analysis);
    stop.global = QScriptValue();
    storedSetup.SetDefinition(definition);
    storedSetup.SetLoaded();
    return KXP_OK;
}

void MCalverinScript_Device::TakeStoredSetup(const DeviceSetup& setup) {
    storedSetup.TakePanelAndLists(setup);
    if (setup.moduleCommands && IsFirstDevice())
        for (const MScriptCommand& command : *setup.moduleCommands)
            ModuleShared::Acquire().moduleCommands.AddUnique(command);
    ReplaceAll(storedSetup.Commands(), setup.commands);
    if (setup.script)
        TakeStoredScript(*setup.script);
}

/// The script stays linked to its file only while the file says what was stored.
void MCalverinScript_Device::TakeStoredScript(const SetupScript& script) {
    const char* folder =
        services.folders != nullptr ? services.folders->GetFolder(KXP_FOLDER_PROJECT_USER_DATA) : nullptr;
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
    storedSetup.SetChoices(script);
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
    ReplaceAll(storedSetup.Commands(), CommitCommands(fresh, moduleCommands));
    ReplaceAll(stop.functions, fresh);
    ReplaceAll(shared, moduleCommands);
}

const char* MCalverinScript_Device::GetDefinition() {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::GetDefinition");
    if (module == nullptr || gone)
        return nullptr;
    if (storedSetup.GetDefinition().empty()) {
        std::string text;
        if (MakeDefinition(live.functions.Snapshot(), storedSetup.GetVariables(), storedSetup.IsRemovalApplied(), false,
                           text))
            storedSetup.SetDefinition(text);
        else if (const char* definitionTemplate = module->GetDefinitionTemplate())
            storedSetup.SetDefinition(definitionTemplate);
        else
            return nullptr;
    }
    return storedSetup.GetDefinition().c_str();
}

bool MCalverinScript_Device::MakeDefinition(const ScriptCommands& definedCommands, const ScriptVariables& variables,
                                            bool hideDefaults, bool resetDefaultIds, std::string& text) {
    DefinitionRequest request;
    request.definitionTemplate = module != nullptr ? module->GetDefinitionTemplate() : nullptr;
    request.deviceNumber = storedSetup.GetDeviceNumber();
    request.deviceVariables = values.GetVariables();
    request.commands = definedCommands;
    request.variables = variables;
    request.hideDefaults = hideDefaults;
    request.resetDefaultIds = resetDefaultIds;
    return BuildDefinition(request, text);
}

/// The host's values of the device's variables, after it has taken their definition.
void MCalverinScript_Device::BindLiveVariables() {
    const std::lock_guard<MLockedList<MScriptVariable>> guard(storedSetup.Variables());
    for (MScriptVariable& variable : storedSetup.Variables()) {
        variable.data = values.Find(variable.name);
        variable.instanceId = variable.data != nullptr ? variable.data->GetInstanceID() : 0;
    }
}

void MCalverinScript_Device::BeginSetup() {
    MergeLegacy();
    storedSetup.SetPendingRemoval(storedSetup.GetChoices().removeDefaults);
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
    storedSetup.SetPendingRemoval(std::nullopt);
    const SetupScript script = setup.script.value_or(SetupScript());
    const bool remove = storedSetup.DecideRemoval(script.removeDefaults);
    AssignIds(true);
    const ScriptCommands before = storedSetup.GetCommands();
    const ScriptCommands now = stop.functions.Snapshot();
    const bool sameCommands = std::equal(before.begin(), before.end(), now.begin(), now.end(), &IsSameCommand);
    const bool tellsChange = storedSetup.IsLoaded() && (!sameCommands || remove != storedSetup.IsRemovalApplied());
    std::string definition;
    const bool taken =
        CanBeStored(setup) &&
        MakeDefinition(now, setup.monitors, remove, storedSetup.IsRemovalApplied() && !remove, definition) &&
        values.Offer(definition);
    if (gone)
        return KXP_CANCELLED;
    if (taken) {
        storedSetup.ApplyRemoval(remove);
        TakeAcceptedSetup(setup, script, scriptFile);
        storedSetup.SetDefinition(definition);
        storedSetup.SetLoaded();
    }
    BindDefaultVariables();
    Analyse();
    if (!taken)
        return KXP_CANCELLED;
    return tellsChange ? KXPCode{KXP_COMMANDS_CHANGED} : KXPCode{KXP_OK};
}

/// What the host could not give back after a restart is refused while the user still has it in the dialog.
bool MCalverinScript_Device::CanBeStored(DeviceSetup setup) {
    setup.commands = stop.functions.Snapshot();
    if (IsFirstDevice())
        setup.moduleCommands = ModuleShared::Acquire().moduleCommands.Snapshot();
    const bool isStorable = IsStorable(PrintSetup(setup));
    if (!isStorable)
        ReportError(QLatin1String(DeviceText::kSetupTooLarge), false);
    return isStorable;
}

void MCalverinScript_Device::TakeAcceptedSetup(const DeviceSetup& setup, const SetupScript& script,
                                               const QString& scriptFile) {
    SetupChoices choices = script;
    if (storedSetup.GetScriptsRemoval())
        choices.removeDefaults = storedSetup.GetChoices().removeDefaults;
    storedSetup.SetChoices(choices);
    TakeScript(scriptFile, script.text);
    storedSetup.TakePanelAndLists(setup);
    BindLiveVariables();
    CommitStopFunctions();
}

KXPCode MCalverinScript_Device::CancelSetup() {
    storedSetup.SetPendingRemoval(std::nullopt);
    BindDefaultVariables();
    Analyse();
    return KXP_CANCELLED;
}

/// Looks at the stored script again, so that the lists of the analysis are those of what the device keeps.
void MCalverinScript_Device::Analyse() {
    QScriptEngine analysis;
    EvaluateScript(storedSetup.GetScriptText(), &analysis);
    ResolveChangedResources();
    stop.global = QScriptValue();
}

void MCalverinScript_Device::ResolveResources(const ScriptSettings& settings) {
    resources->Take(FindResources(settings), services.resources);
}

/// A running script keeps its ports when a dialog is left with the resources that it had found.
void MCalverinScript_Device::ResolveChangedResources() {
    const std::vector<ResourceRequest> wanted = FindResources(storedSetup.GetSettings());
    if (!(wanted == resources->GetRequests()))
        resources->Take(wanted, services.resources);
}

MScriptResource* MCalverinScript_Device::FindResource(const QScriptValue& signature) {
    const std::optional<ResourceRequest> request = RequestOf(ReadResourceSignature(signature, *engine));
    return request ? resources->Find(*request) : nullptr;
}
