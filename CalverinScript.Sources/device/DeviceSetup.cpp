#include "MCalverinScript_Device.h"

#include <cstring>

#include <QFile>
#include <QScriptEngine>

#include "DeviceTexts.h"
#include "HostText.h"
#include "IHostServices.h"
#include "IModuleServices.h"
#include "ScriptAnalysis.h"
#include "ThreadPromise.h"

namespace {

/// Runs of four blanks became one where an older setup stored its script as plain text.
QString WithCondensedBlanks(QString text) {
    return text.replace(QStringLiteral("    "), QStringLiteral(" "));
}

} // namespace

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
    if (door.IsClosed())
        return KXP_NOT_IMPLEMENTED;
    DeviceSetup setup = GetCurrentSetup();
    if (IsFirstDevice())
        setup.moduleCommands = UserCommands::OfModule();
    setup.commands = commands.Get();
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
    const HostDoor::Visit visit(door); // an analysis may take long, and a host may not wait for it
    if (door.IsClosed())
        return KXP_NOT_IMPLEMENTED;
    DeviceSetup setup;
    const KXPCode code = ReadSetup(text, setup);
    if (!setup.name.isNull())
        MKXPDeviceBase::SetName(ToHostText(setup.name).constData());
    if (code != KXP_OK)
        return code;
    TakeStoredSetup(setup);
    QScriptEngine engine;
    EvaluateScript(storedSetup.GetScriptText(), &engine);
    storedSetup.ApplyRemoval(storedSetup.DecideRemoval(storedSetup.GetChoices().removeDefaults));
    ResolveResources(storedSetup.GetSettings());
    MLockedList<MScriptCommand>& functions = analysis->GetSet().functions;
    UserCommands::AssignIds(functions, false);
    std::string definition;
    const bool built = MakeDefinition(functions.Snapshot(), storedSetup.GetVariables(), storedSetup.IsRemovalApplied(),
                                      false, definition);
    const bool taken = built && Offer(definition);
    if (door.IsClosed()) // the host has released the module meanwhile
        return KXP_NOT_IMPLEMENTED;
    if (taken) {
        BindLiveVariables();
        commands.Commit(functions);
    }
    BindDefaultVariables();
    if (analysis->HasEndedByItself()) // a second look at a script that does not end would take as long again
        EvaluateScript(storedSetup.GetScriptText(), &engine);
    analysis->ForgetValue();
    storedSetup.SetDefinition(definition);
    storedSetup.SetLoaded();
    return KXP_OK;
}

void MCalverinScript_Device::TakeStoredSetup(const DeviceSetup& setup) {
    storedSetup.TakePanelAndLists(setup);
    if (setup.moduleCommands && IsFirstDevice())
        UserCommands::AddToModule(*setup.moduleCommands);
    commands.Set(setup.commands);
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

void MCalverinScript_Device::TakeScript(const QString& fileName, const QString& text) {
    storedSetup.SetScript(fileName, text);
    ShowScript(fileName, text);
}

KXPCode MCalverinScript_Device::UpdateCommand(const char* commandXml, char** out) {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::UpdateCommand");
    if (door.IsClosed() || out == nullptr)
        return KXP_NOT_IMPLEMENTED;
    char* const updated = commands.Update(commandXml, CopyName());
    if (updated == nullptr)
        return KXP_NOT_IMPLEMENTED;
    *out = updated;
    return KXP_OK;
}

bool MCalverinScript_Device::IsFirstDevice() const {
    MLockedList<MCalverinScript_Device*>* devices = module != nullptr ? module->GetDeviceList() : nullptr;
    MCalverinScript_Device* first = nullptr;
    return devices == nullptr || !devices->Get(0, first) || first == this;
}

void MCalverinScript_Device::BeginSetup() {
    MergeLegacy();
    storedSetup.SetPendingRemoval(storedSetup.GetChoices().removeDefaults);
}

void MCalverinScript_Device::MergeLegacy() {
    if (!UserCommands::HasLegacy() || module == nullptr || !module->IsHostAtLeast642())
        return;
    ScriptCommands inUse;
    if (auto* devices = module->GetDeviceList()) {
        const std::lock_guard<MLockedList<MCalverinScript_Device*>> guard(*devices);
        for (MCalverinScript_Device* device : *devices) {
            const ScriptCommands used = device->GetCommands();
            inUse.insert(inUse.end(), used.begin(), used.end());
        }
    }
    UserCommands::MergeLegacy(inUse);
}

KXPCode MCalverinScript_Device::AcceptSetup(const DeviceSetup& setup, const QString& scriptFile) {
    storedSetup.SetPendingRemoval(std::nullopt);
    const SetupScript script = setup.script.value_or(SetupScript());
    const bool remove = storedSetup.DecideRemoval(script.removeDefaults);
    UserCommands::AssignIds(analysis->GetSet().functions, true);
    const ScriptCommands functions = analysis->GetSet().functions.Snapshot();
    const bool tellsChange =
        storedSetup.IsLoaded() && (commands.DifferFrom(functions) || remove != storedSetup.IsRemovalApplied());
    std::string definition;
    const bool taken =
        CanBeStored(setup) &&
        MakeDefinition(functions, setup.monitors, remove, storedSetup.IsRemovalApplied() && !remove, definition) &&
        Offer(definition);
    if (door.IsClosed())
        return KXP_CANCELLED;
    if (taken) {
        storedSetup.ApplyRemoval(remove);
        TakeAcceptedSetup(setup, script, scriptFile);
        storedSetup.SetDefinition(definition);
        storedSetup.SetLoaded();
    }
    BindDefaultVariables();
    AnalyseStoredScript();
    if (!taken)
        return KXP_CANCELLED;
    return tellsChange ? KXPCode{KXP_COMMANDS_CHANGED} : KXPCode{KXP_OK};
}

/// What the host could not give back after a restart is refused while the user still has it in the dialog.
bool MCalverinScript_Device::CanBeStored(DeviceSetup setup) {
    setup.commands = analysis->GetSet().functions.Snapshot();
    if (IsFirstDevice())
        setup.moduleCommands = UserCommands::OfModule();
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
    commands.Commit(analysis->GetSet().functions);
}

KXPCode MCalverinScript_Device::CancelSetup() {
    storedSetup.SetPendingRemoval(std::nullopt);
    BindDefaultVariables();
    AnalyseStoredScript();
    return KXP_CANCELLED;
}

/// Looks at the stored script again, so that the lists of the analysis are those of what the device keeps.
void MCalverinScript_Device::AnalyseStoredScript() {
    QScriptEngine engine;
    EvaluateScript(storedSetup.GetScriptText(), &engine);
    ResolveChangedResources();
    analysis->ForgetValue();
}

void MCalverinScript_Device::RunStoredScript() {
    const QString fileName = storedSetup.GetScriptFileName();
    if (!fileName.isEmpty())
        LoadScriptCommand(ToHostText(fileName).constData(), false);
    else
        EvaluateScriptCommand(storedSetup.GetScriptText(), false);
}
