#include "SetupDesk.h"

#include <cstring>

#include <QFile>
#include <QScriptEngine>

#include "DeviceTexts.h"
#include "HostDoor.h"
#include "HostServices.h"
#include "HostText.h"
#include "IHostServices.h"
#include "IModuleServices.h"
#include "IProgramOwner.h"
#include "ResourceRoom.h"
#include "ScriptAnalysis.h"
#include "StoredSetup.h"
#include "UserCommands.h"

namespace {

/// Runs of four blanks became one where an older setup stored its script as plain text.
QString WithCondensedBlanks(QString text) {
    return text.replace(QStringLiteral("    "), QStringLiteral(" "));
}

} // namespace

KXPCode SetupDesk::Print(char** out) {
    const HostDoor::Visit visit(m_parts.door);
    *out = nullptr;
    if (m_parts.door.IsClosed())
        return KXP_NOT_IMPLEMENTED;
    const std::string text = PrintWith(Describe(), m_parts.commands.Get());
    if (!CanBeStored(text))
        return KXP_NOT_IMPLEMENTED;
    *out = strdup(text.c_str());
    return KXP_OK;
}

DeviceSetup SetupDesk::Describe() {
    DeviceSetup setup = m_parts.setup.Describe();
    setup.name = FromHostText(m_parts.owner.GetSetupName().c_str());
    return setup;
}

std::string SetupDesk::PrintWith(DeviceSetup setup, const ScriptCommands& commands) const {
    if (m_parts.owner.IsFirstDevice())
        setup.moduleCommands = UserCommands::OfModule();
    setup.commands = commands;
    return PrintSetup(setup);
}

/// What the host could not give back after a restart is refused while its user can still change it.
bool SetupDesk::CanBeStored(const std::string& text) {
    const bool isStorable = IsStorable(text);
    if (!isStorable)
        m_parts.reports.ReportError(QLatin1String(DeviceText::kSetupTooLarge), false);
    return isStorable;
}

KXPCode SetupDesk::Take(const char* text) {
    const HostDoor::Visit visit(m_parts.door); // an analysis may take long, and a host may not wait for it
    if (m_parts.door.IsClosed())
        return KXP_NOT_IMPLEMENTED;
    DeviceSetup read;
    const KXPCode code = ReadSetup(text, read);
    if (!read.name.isNull())
        m_parts.owner.SetSetupName(ToHostText(read.name).constData());
    if (code != KXP_OK)
        return code;
    TakeStored(read);
    StoredSetup& setup = m_parts.setup;
    ScriptAnalysis& analysis = m_parts.analysis;
    QScriptEngine engine;
    analysis.RunOn(engine, setup.GetScriptText());
    if (m_parts.door.IsClosed()) // the host has released the device, or the module, when it was asked
        return KXP_NOT_IMPLEMENTED;
    setup.ApplyRemoval(setup.DecideRemoval(setup.GetChoices().removeDefaults));
    ResolveResources(setup.GetSettings());
    MLockedList<MScriptCommand>& functions = analysis.GetSet().functions;
    UserCommands::AssignIds(functions, false);
    std::string definition;
    const bool built =
        m_definition.Build(functions.Snapshot(), setup.GetVariables(), setup.IsRemovalApplied(), false, definition);
    const bool taken = built && m_definition.Offer(definition);
    if (m_parts.door.IsClosed())
        return KXP_NOT_IMPLEMENTED;
    if (taken) {
        m_definition.BindVariables();
        m_parts.commands.Commit(functions);
    }
    m_definition.BindDefaults();
    AnalyseAgain(engine);
    if (m_parts.door.IsClosed())
        return KXP_NOT_IMPLEMENTED;
    setup.SetDefinition(definition);
    setup.SetLoaded();
    return KXP_OK;
}

const char* SetupDesk::GetDefinition() {
    const char* definition = m_parts.door.IsClosed() ? nullptr : m_definition.Get();
    return m_parts.door.IsClosed() ? nullptr : definition;
}

void SetupDesk::TakeStored(const DeviceSetup& setup) {
    m_parts.setup.TakePanelAndLists(setup);
    if (setup.moduleCommands && m_parts.owner.IsFirstDevice())
        UserCommands::AddToModule(*setup.moduleCommands);
    m_parts.commands.Set(setup.commands);
    if (setup.script)
        TakeStoredScript(*setup.script);
}

/// The script stays linked to its file only while the file says what was stored.
void SetupDesk::TakeStoredScript(const SetupScript& script) {
    IFolderManager* const folders = m_parts.services.folders;
    const char* folder = folders != nullptr ? folders->GetFolder(KXP_FOLDER_PROJECT_USER_DATA) : nullptr;
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
    m_parts.setup.SetChoices(script);
}

void SetupDesk::TakeScript(const QString& fileName, const QString& text) {
    m_parts.setup.SetScript(fileName, text);
    m_parts.owner.ShowScript(fileName, text);
}

void SetupDesk::Begin() {
    MergeLegacy();
    m_parts.setup.SetPendingRemoval(m_parts.setup.GetChoices().removeDefaults);
}

void SetupDesk::MergeLegacy() {
    if (UserCommands::HasLegacy() && m_parts.module != nullptr && m_parts.module->IsHostAtLeast642())
        UserCommands::MergeLegacy(m_parts.owner.CommandsOfAllDevices());
}

KXPCode SetupDesk::Accept(const DeviceSetup& setup, const QString& scriptFile) {
    const HostDoor::Visit visit(m_parts.door);
    StoredSetup& stored = m_parts.setup;
    stored.SetPendingRemoval(std::nullopt);
    const SetupScript script = setup.script.value_or(SetupScript());
    const bool remove = stored.DecideRemoval(script.removeDefaults);
    UserCommands::AssignIds(m_parts.analysis.GetSet().functions, true);
    const ScriptCommands functions = m_parts.analysis.GetSet().functions.Snapshot();
    const bool tellsChange =
        stored.IsLoaded() && (m_parts.commands.DifferFrom(functions) || remove != stored.IsRemovalApplied());
    std::string definition;
    const bool taken =
        CanBeStored(PrintWith(setup, functions)) &&
        m_definition.Build(functions, setup.monitors, remove, stored.IsRemovalApplied() && !remove, definition) &&
        m_definition.Offer(definition);
    if (m_parts.door.IsClosed())
        return KXP_CANCELLED;
    if (taken) {
        stored.ApplyRemoval(remove);
        TakeAccepted(setup, script, scriptFile);
        stored.SetDefinition(definition);
        stored.SetLoaded();
    }
    m_definition.BindDefaults();
    AnalyseStored();
    if (!taken || m_parts.door.IsClosed())
        return KXP_CANCELLED;
    return tellsChange ? KXPCode{KXP_COMMANDS_CHANGED} : KXPCode{KXP_OK};
}

void SetupDesk::TakeAccepted(const DeviceSetup& setup, const SetupScript& script, const QString& scriptFile) {
    SetupChoices choices = script;
    if (m_parts.setup.GetScriptsRemoval())
        choices.removeDefaults = m_parts.setup.GetChoices().removeDefaults;
    m_parts.setup.SetChoices(choices);
    TakeScript(scriptFile, script.text);
    m_parts.setup.TakePanelAndLists(setup);
    m_definition.BindVariables();
    m_parts.commands.Commit(m_parts.analysis.GetSet().functions);
}

KXPCode SetupDesk::Cancel() {
    const HostDoor::Visit visit(m_parts.door);
    m_parts.setup.SetPendingRemoval(std::nullopt);
    m_definition.BindDefaults();
    AnalyseStored();
    return KXP_CANCELLED;
}

/// Looks at the stored script again, so that the lists of the analysis are those of what the device keeps.
void SetupDesk::AnalyseStored() {
    QScriptEngine engine;
    AnalyseAgain(engine);
    ResolveChangedResources();
}

/// Another look at a script that does not end would take as long as the first; one for a device that the host has
/// released meanwhile would ask the host.
void SetupDesk::AnalyseAgain(QScriptEngine& engine) {
    const QString text = m_parts.setup.GetScriptText();
    if (!m_parts.door.IsClosed() && !m_parts.analysis.IsKnownNotToEnd(text))
        m_parts.analysis.RunOn(engine, text);
    m_parts.analysis.ForgetValue();
}

void SetupDesk::ResolveResources(const ScriptSettings& settings) {
    const HostDoor::Visit visit(m_parts.door);
    m_parts.resources.Take(FindResources(settings), m_parts.services.resources);
}

/// A running script keeps its ports when a dialog is left with the resources that it had found.
void SetupDesk::ResolveChangedResources() {
    const std::vector<ResourceRequest> wanted = FindResources(m_parts.setup.GetSettings());
    if (!(wanted == m_parts.resources.GetRequests()))
        m_parts.resources.Take(wanted, m_parts.services.resources);
}
