#include "WidgetCalverinScriptGUI.h"

#include <QCloseEvent>
#include <QDesktopServices>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMenu>
#include <QShortcut>
#include <QStandardItemModel>
#include <QUrl>

#include "AnalysisOutcome.h"
#include "BusyCursor.h"
#include "CodeEditor.h"
#include "DialogInsertPerformHelper.h"
#include "DialogMessage.h"
#include "IModuleServices.h"
#include "ModuleShared.h"
#include "MScriptDescription.h"
#include "Pictures.h"
#include "ScriptAnalysis.h"
#include "ScriptFiles.h"
#include "ScriptGlobals.h"
#include "ScriptPlaces.h"
#include "ScriptWorld.h"
#include "SettingsForm.h"
#include "SetupDesk.h"
#include "SetupMerge.h"
#include "ui_WidgetCalverinScriptGUI.h"

namespace {

enum Tab { SetupTab, ScriptTab, VariablesTab, OptionsTab };

constexpr const char* kHelpFile = "kxpCalverinScript.htm";

/// What completion and the insertion dialogs offer; null without a device.
QStandardItemModel* CompletionTable() {
    const ModuleShared* shared = ModuleShared::Get();
    return shared != nullptr ? shared->completionModel.get() : nullptr;
}

} // namespace

WidgetCalverinScriptGUI::WidgetCalverinScriptGUI(QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::WidgetCalverinScriptGUI>()) {
    RegisterPictures();
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setWindowFlag(Qt::WindowMaximizeButtonHint, true);
    addActions(m_ui->tab_Script->GetActions());
    ConnectSignals();
    ConnectInsertions();
}

WidgetCalverinScriptGUI::~WidgetCalverinScriptGUI() = default;

void WidgetCalverinScriptGUI::ConnectSignals() {
    using Dialog = WidgetCalverinScriptGUI;
    connect(m_ui->pushButtonLoad, &QPushButton::clicked, this, &Dialog::SlotOpenFile);
    connect(m_ui->pushButtonSave, &QPushButton::clicked, this, &Dialog::SlotSaveFile);
    connect(m_ui->pushButtonSaveAs, &QPushButton::clicked, this, &Dialog::SlotSaveAsFile);
    connect(m_ui->pushButtonHelp, &QPushButton::clicked, this, &Dialog::SlotOpenHelpFile);
    connect(m_ui->pushButtonOk, &QPushButton::clicked, this, &Dialog::accept);
    connect(m_ui->pushButtonCancel, &QPushButton::clicked, this, &Dialog::reject);
    connect(m_ui->checkBoxProgrammingMode, &QCheckBox::clicked, this, &Dialog::SlotChangeOnProgrammingMode);
    connect(m_ui->tabWidget, &QTabWidget::currentChanged, this, &Dialog::SlotCurrentTabChanged);
    connect(&m_ui->tab_Setup->Form(), &SettingsForm::SignalResourceChosen, this, &Dialog::SlotTakeResources);
    connect(m_ui->tab_Script, &TabScript::SignalEvaluate, this, &Dialog::SlotCallEvaluateScript);
    connect(m_ui->tab_Script, &TabScript::SignalOpenFinder, this, &Dialog::SlotOpenFinder);
    connect(m_ui->tab_Variables, &TabVariables::SignalExtract, this, &Dialog::SlotExtractFromScript);
    connect(m_ui->tab_Options, &TabOptions::SignalRemoveDefaultsClicked, this,
            &Dialog::SlotUpdateRemoveDefaultCmdVarFromSetupUI);
    connect(m_ui->tab_Options, &TabOptions::SignalAutoCompletionClicked, this,
            &Dialog::SlotChangeOnEnableAutoCompletion);
    connect(new QShortcut(Qt::Key_F1, this), &QShortcut::activated, this, &Dialog::SlotOpenHelpFile);
}

void WidgetCalverinScriptGUI::ConnectInsertions() {
    using Dialog = WidgetCalverinScriptGUI;
    const TabScript* const tab = m_ui->tab_Script;
    connect(tab, &TabScript::SignalInsertVariable, this, &Dialog::SlotInsertVariable);
    connect(tab, &TabScript::SignalInsertUserGroup, this, &Dialog::SlotInsertUserGroup);
    connect(tab, &TabScript::SignalInsertTask, this, &Dialog::SlotInsertTask);
    connect(tab, &TabScript::SignalInsertCue, this, &Dialog::SlotInsertCue);
    connect(tab, &TabScript::SignalInsertUserScreen, this, &Dialog::SlotInsertUserScreen);
    connect(tab, &TabScript::SignalInsertDevice, this, &Dialog::SlotInsertDevice);
    connect(tab, &TabScript::SignalInsertPerform, this, &Dialog::SlotInsertPerform);
    connect(this, &Dialog::SignalInsertText, &m_ui->tab_Script->Editor(), &CodeEditor::SlotInsertText);
}

void WidgetCalverinScriptGUI::LoadFromDevice(MCalverinScript_Device* device) {
    if (device == nullptr)
        return;
    m_device = device;
    connect(device, &QObject::destroyed, this, &WidgetCalverinScriptGUI::SlotGiveUp);
    LoadOptions();
    LoadScript();
    LoadLists();
    LoadAnalysis();
    UpdateDescription();
    ShowLoadedFile();
    UpdateRemoveDefaults();
    m_openedSetup = SetupNow();
}

void WidgetCalverinScriptGUI::LoadOptions() {
    const DeviceSetup setup = m_device->GetSetupDesk().Describe();
    const SetupScript script = setup.script.value_or(SetupScript());
    const SetupMemory& memory = m_device->GetStoredSetup().Memory();
    const QSignalBlocker quiet(m_ui->tabWidget);
    m_ui->checkBoxProgrammingMode->setChecked(script.programmingMode);
    SlotChangeOnProgrammingMode();
    if (script.programmingMode)
        m_ui->tabWidget->setCurrentIndex(memory.currentTab);
    m_ui->tab_Options->SetOptions({script.registerAllUserGroups, script.autoCompletion,
                                   setup.userModeVisible.value_or(true), setup.runModeVisible.value_or(true)});
    m_isTableFull = script.autoCompletion;
    m_ui->tab_Script->SetCompletions(CompletionTable());
    m_ui->tab_Options->ShowDebugger(m_device->GetWorld().Debugger() != nullptr);
    const QRect stored(memory.x, memory.y, memory.width, memory.height);
    if (memory.x != 0 || memory.y != 0 || memory.width != 0 || memory.height != 0)
        setGeometry(stored);
}

void WidgetCalverinScriptGUI::LoadScript() {
    m_scriptFileName = m_device->GetStoredSetup().GetScriptFileName();
    m_ui->tab_Script->SetText(m_device->GetStoredSetup().GetScriptText());
    m_seenFiles.Note(m_device, m_scriptFileName);
}

void WidgetCalverinScriptGUI::LoadLists() {
    m_loadedVariables = m_device->GetStoredSetup().GetVariables();
    m_ui->tab_Variables->SetVariables(m_loadedVariables);
    m_settings = m_device->GetStoredSetup().GetSettings();
    IModuleServices* const module = m_device->GetModule();
    m_ui->tab_Setup->Form().SetHost(
        FormHost::Find(module != nullptr ? module->GetHost() : nullptr, QByteArray(m_device->GetName())));
}

/// A long script takes longer to analyse than to show, and the device has done it already.
void WidgetCalverinScriptGUI::LoadAnalysis() {
    const auto known = RecallAnalysis(*m_device, m_device->GetStoredSetup().GetScriptText());
    if (!known)
        return SlotExtractFromScript();
    m_analysedText = m_ui->tab_Script->GetText();
    m_analysis = *known;
    m_ui->tab_Script->ShowAnalysis(m_analysis);
    Extract();
}

void WidgetCalverinScriptGUI::ShowFileName(MScriptDescription* description) {
    m_ui->lineEditScriptFileName->setText(description != nullptr ? description->GetDisplayText()
                                                                 : QStringLiteral("No script loaded"));
}

void WidgetCalverinScriptGUI::ShowLoadedFile() {
    ShowFileName(ReadScriptFile(m_scriptFileName) ? DescribeOwnFile().get() : nullptr);
}

/// What the device's script file says of itself. @return null without one.
std::unique_ptr<MScriptDescription> WidgetCalverinScriptGUI::DescribeOwnFile() {
    if (IsChangedSinceFile() || m_ui->tab_Script->GetText() != m_analysedText || !QFileInfo::exists(m_scriptFileName))
        return DescribeFile(m_scriptFileName, GetScratchEngine(), m_device);
    return std::make_unique<MScriptDescription>(Describe(MScriptDescription::OfFile(m_scriptFileName)));
}

/// @return the record with what the last analysis found; as it was when that failed.
MScriptDescription WidgetCalverinScriptGUI::Describe(MScriptDescription record) {
    if (m_analysis.succeeded && m_device != nullptr)
        record.TakeSaid(m_device->GetAnalysis().GetDescription());
    return record;
}

void WidgetCalverinScriptGUI::UpdateDescription() {
    m_ui->tab_Setup->ShowDescription(Describe(MScriptDescription()));
}

QScriptEngine* WidgetCalverinScriptGUI::GetScratchEngine() {
    if (!m_engine) {
        m_engine = std::make_unique<QScriptEngine>();
        SetUpAnalysisGlobals(*m_engine);
    }
    return m_engine.get();
}

bool WidgetCalverinScriptGUI::SlotCallEvaluateScript() {
    return Evaluate();
}

bool WidgetCalverinScriptGUI::Evaluate() {
    if (m_device == nullptr)
        return false;
    m_analysedText = m_ui->tab_Script->GetText();
    m_analysis = AnalyseScript(*m_device, m_analysedText, *GetScratchEngine());
    m_ui->tab_Script->ShowAnalysis(m_analysis);
    return m_analysis.succeeded;
}

/// A text that did not come to its end would not do so now: only the button tries it again.
bool WidgetCalverinScriptGUI::EvaluateUnlessKnown() {
    const QString text = m_ui->tab_Script->GetText();
    if (m_device == nullptr || text != m_analysedText || !m_device->GetAnalysis().IsKnownNotToEnd(text))
        return Evaluate();
    m_ui->tab_Script->ShowAnalysis(m_analysis);
    return false;
}

void WidgetCalverinScriptGUI::SlotExtractFromScript() {
    if (EvaluateUnlessKnown())
        Extract();
}

/// Brings the dialog's copies up to what the last analysis found, with what the user has entered.
void WidgetCalverinScriptGUI::Extract() {
    ScriptSet& found = m_device->GetAnalysis().GetSet();
    ScriptVariables variables = found.variables.Snapshot();
    m_ui->tab_Variables->SetVariables(
        MergeVariables(variables, m_loadedVariables, m_ui->tab_Variables->GetVariables()));
    ReplaceAll(found.variables, variables);
    m_ui->tab_Setup->Form().ReadBack(m_settings);
    ScriptSettings settings = found.settings.Snapshot();
    MergeSettings(settings, m_settings);
    ReplaceAll(found.settings, settings);
    m_settings = settings;
    RefreshForm();
}

void WidgetCalverinScriptGUI::RefreshForm() {
    m_ui->tab_Setup->Form().ShowSettings(m_settings);
}

void WidgetCalverinScriptGUI::SlotTakeResources() {
    if (m_device == nullptr)
        return;
    m_ui->tab_Setup->Form().ReadBack(m_settings);
    m_device->GetSetupDesk().ResolveResources(m_settings);
}

/// The script's own word about the defaults outranks the user's.
void WidgetCalverinScriptGUI::UpdateRemoveDefaults() {
    if (m_device == nullptr)
        return;
    m_ui->tab_Options->ShowRemoveDefaults(m_device->GetStoredSetup().GetChoices().removeDefaults,
                                          m_device->GetStoredSetup().GetScriptsRemoval());
    SlotUpdateRemoveDefaultCmdVarFromSetupUI();
}

void WidgetCalverinScriptGUI::SlotUpdateRemoveDefaultCmdVarFromSetupUI() {
    if (m_device != nullptr)
        m_device->GetStoredSetup().SetPendingRemoval(IsRemoveDefaultsChecked());
}

const ScriptVariables& WidgetCalverinScriptGUI::GetUserVariables() const {
    return m_ui->tab_Variables->GetVariables();
}

bool WidgetCalverinScriptGUI::IsRemoveDefaultsChecked() const {
    return m_ui->tab_Options->IsRemoveDefaultsChecked();
}

void WidgetCalverinScriptGUI::SlotChangeOnProgrammingMode() {
    const bool isProgramming = m_ui->checkBoxProgrammingMode->isChecked();
    while (m_ui->tabWidget->count() > 1)
        m_ui->tabWidget->removeTab(1);
    if (isProgramming) {
        m_ui->tabWidget->addTab(m_ui->tab_Script, QStringLiteral("Script"));
        m_ui->tabWidget->addTab(m_ui->tab_Variables, QStringLiteral("Variables"));
        m_ui->tabWidget->addTab(m_ui->tab_Options, QStringLiteral("Options"));
    }
    m_ui->pushButtonSave->setVisible(isProgramming);
    m_ui->pushButtonSaveAs->setVisible(isProgramming);
}

void WidgetCalverinScriptGUI::SlotChangeOnEnableAutoCompletion() {
    if (!m_ui->tab_Options->GetOptions().autoCompletion) {
        m_ui->tab_Script->SetCompletions(nullptr);
        return;
    }
    if (!m_isTableFull && m_device != nullptr) {
        const BusyCursor busy;
        m_device->RebuildCompletionTable(true);
    }
    m_ui->tab_Script->SetCompletions(CompletionTable());
}

/// The keys of the actions work in the whole dialog, but nobody wants a text where he does not see it.
void WidgetCalverinScriptGUI::InsertObject(InsertKind kind) {
    if (!m_ui->tab_Script->isVisible())
        return;
    DialogInsertHelper dialog(this);
    if (m_device != nullptr)
        dialog.Init(CompletionTable(), kind);
    InsertFrom(dialog);
}

void WidgetCalverinScriptGUI::SlotInsertPerform() {
    if (!m_ui->tab_Script->isVisible())
        return;
    DialogInsertPerformHelper dialog(this);
    if (m_device != nullptr) {
        dialog.SetRemote(m_device->GetRemote());
        dialog.SetModel(CompletionTable());
    }
    InsertFrom(dialog);
}

/// Runs a dialog, which goes with this one, and inserts what it gives.
template <typename Dialog>
void WidgetCalverinScriptGUI::InsertFrom(Dialog& dialog) {
    connect(this, &QDialog::finished, &dialog, &QDialog::reject);
    if (dialog.exec() == QDialog::Accepted)
        Q_EMIT SignalInsertText(dialog.GetText());
}

void WidgetCalverinScriptGUI::SlotCurrentTabChanged(int iCurrentTab) {
    if (iCurrentTab == ScriptTab)
        return;
    m_ui->tab_Script->CloseFinder();
    SlotExtractFromScript();
    if (iCurrentTab == SetupTab)
        UpdateDescription();
    if (iCurrentTab == OptionsTab)
        UpdateRemoveDefaults();
}

void WidgetCalverinScriptGUI::SlotOpenFinder() {
    if (m_device == nullptr)
        return;
    SetupMemory memory = m_device->GetStoredSetup().Memory();
    m_ui->tab_Script->OpenFinder(memory);
    if (m_device != nullptr) // it may be gone by now
        m_device->GetStoredSetup().Memory() = memory;
}

void WidgetCalverinScriptGUI::SlotOpenHelpFile() {
    const QString folder = HelpFolderOf(m_device);
    if (folder.isEmpty())
        return;
    const QString path = PathBelow(folder, QLatin1String(kHelpFile));
    if (QFileInfo::exists(path))
        QDesktopServices::openUrl(QUrl::fromLocalFile(path));
    else
        DialogMessage::Warn(this, tr("There is no help file at %1.").arg(path));
}

void WidgetCalverinScriptGUI::accept() {
    const bool isSound = EvaluateUnlessKnown();
    if (!isSound &&
        !DialogMessage::Ask(
            this, QStringLiteral("An error has been detected into the script.\nDo you want to continue anyway?")))
        return;
    if (m_device == nullptr || m_isGivenUp)
        return;
    if (isSound)
        Extract();
    else
        m_ui->tab_Setup->Form().ReadBack(m_settings);
    if (IsChangedSinceFile() && !AskWhereChangesGo())
        return;
    m_ui->tab_Script->CloseFinder();
    QDialog::accept();
}

void WidgetCalverinScriptGUI::reject() {
    m_ui->tab_Script->CloseFinder();
    QDialog::reject();
}

/// A question that is open waits in a loop of its own, which would never end.
void WidgetCalverinScriptGUI::SlotGiveUp() {
    m_isGivenUp = true;
    for (QMenu* opened : findChildren<QMenu*>())
        opened->close();
    for (QDialog* opened : findChildren<QDialog*>())
        opened->reject();
    reject();
}

void WidgetCalverinScriptGUI::closeEvent(QCloseEvent* event) {
    m_ui->tab_Script->CloseFinder();
    QDialog::closeEvent(event);
}

void WidgetCalverinScriptGUI::keyPressEvent(QKeyEvent* event) {
    const bool asks = event->matches(QKeySequence::Cancel) && m_device != nullptr && SetupNow() != m_openedSetup;
    if (asks &&
        !DialogMessage::Ask(this, tr("The setup has been changed.\nDo you want to leave it without the changes?")))
        return;
    QDialog::keyPressEvent(event);
}

DeviceSetup WidgetCalverinScriptGUI::MakeSetup() const {
    const SetupOptions options = m_ui->tab_Options->GetOptions();
    DeviceSetup setup;
    setup.userModeVisible = options.userModeVisible;
    setup.runModeVisible = options.runModeVisible;
    setup.settings = m_settings;
    setup.monitors = GetUserVariables();
    SetupScript script;
    script.text = TextToStore();
    script.registerAllUserGroups = options.registerAllUserGroups;
    script.removeDefaults = IsRemoveDefaultsChecked();
    script.programmingMode = m_ui->checkBoxProgrammingMode->isChecked();
    script.autoCompletion = options.autoCompletion;
    setup.script = script;
    return setup;
}

/// What the dialog holds, with the form as it stands.
std::string WidgetCalverinScriptGUI::SetupNow() const {
    DeviceSetup setup = MakeSetup();
    m_ui->tab_Setup->Form().ReadBack(setup.settings);
    return PrintSetup(setup);
}

KXPCode WidgetCalverinScriptGUI::StoreToDevice(MCalverinScript_Device* device) {
    if (device == nullptr)
        return KXP_CANCELLED;
    const KXPCode code = device->GetSetupDesk().Accept(MakeSetup(), m_scriptFileName);
    if (code == KXP_CANCELLED)
        return code;
    SetupMemory& memory = device->GetStoredSetup().Memory();
    memory.currentTab = m_ui->tabWidget->currentIndex();
    const QRect rectangle = geometry();
    memory.x = rectangle.x();
    memory.y = rectangle.y();
    memory.width = rectangle.width();
    memory.height = rectangle.height();
    return code;
}
