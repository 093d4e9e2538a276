#include "WidgetMScriptControlPanel.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QIcon>
#include <QPushButton>

#include "AnalysisOutcome.h"
#include "CodeEditor.h"
#include "DialogSelectScript.h"
#include "MScriptDescription.h"
#include "Pictures.h"
#include "ScriptAnalysis.h"
#include "ScriptFiles.h"
#include "ScriptGlobals.h"
#include "ScriptPlaces.h"
#include "ScriptSaving.h"
#include "ScriptWorld.h"
#include "TabScript.h"
#include "ui_WidgetMScriptControlPanel.h"

namespace {

QString NoScript() {
    return QStringLiteral("No script loaded");
}

} // namespace

/// Something that waits, for a dialog or for the device. Nothing else is begun meanwhile, and the panel outlives it.
class WidgetMScriptControlPanel::Work {
public:
    explicit Work(WidgetMScriptControlPanel& panel)
        : m_visit(panel.m_use)
        , m_panel(panel)
        , m_focus(panel.focusWidget()) {
        m_panel.m_isAtWork = true;
        m_panel.EnableControls(false);
    }
    ~Work() {
        m_panel.m_isAtWork = false;
        m_panel.EnableControls(m_panel.m_device != nullptr);
        if (m_focus != nullptr && m_focus->isEnabled())
            m_focus->setFocus();
    }
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

private:
    const PanelUse::Visit m_visit;
    WidgetMScriptControlPanel& m_panel;
    const QPointer<QWidget> m_focus; ///< has the keyboard again afterwards
};

WidgetMScriptControlPanel::WidgetMScriptControlPanel(QWidget* parent, PanelUse& use)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::WidgetMScriptControlPanel>())
    , m_use(use) {
    RegisterPictures();
    m_ui->setupUi(this);
    SetUpAnalysisGlobals(m_engine);
    SetUpEditor();
    ConnectSignals();
    EnableControls(false);
}

WidgetMScriptControlPanel::~WidgetMScriptControlPanel() = default;

/// Of what the setup dialog's editor has, the panel's has the search alone.
void WidgetMScriptControlPanel::SetUpEditor() {
    TabScript& tab = *m_ui->tab_Script;
    tab.Editor().setCompleter(nullptr);
    for (QAction* action : tab.GetActions())
        action->setVisible(action == tab.GetActions().first());
    addAction(tab.GetActions().first());
    disconnect(&tab.Editor(), &QWidget::customContextMenuRequested, &tab, nullptr);
    tab.AddTool(*m_ui->pushButtonDebugCurrentSript);
}

void WidgetMScriptControlPanel::ConnectSignals() {
    using Panel = WidgetMScriptControlPanel;
    connect(m_ui->pushButtonLoad, &QPushButton::clicked, this, &Panel::SlotOpenFile);
    connect(m_ui->pushButtonSave, &QPushButton::clicked, this, &Panel::SlotSaveFile);
    connect(m_ui->pushButtonSaveAs, &QPushButton::clicked, this, &Panel::SlotSaveAsFile);
    connect(m_ui->pushButtonRefreshFromDevice, &QPushButton::clicked, this, &Panel::SlotRefreshFromDevice);
    connect(m_ui->pushButtonSync, &QPushButton::clicked, this, &Panel::SlotSynchronizeScript);
    connect(m_ui->tab_Script, &TabScript::SignalEvaluate, this, &Panel::SlotCallEvaluateScript);
    connect(m_ui->tab_Script, &TabScript::SignalOpenFinder, this, &Panel::SlotOpenFinder);
    CodeEditor& editor = m_ui->tab_Script->Editor();
    connect(&editor, &QPlainTextEdit::textChanged, this, &Panel::SlotEnableSaveButton);
    connect(&editor, &QPlainTextEdit::textChanged, this, &Panel::SlotEnableSyncButton);
    connect(&editor, &QWidget::customContextMenuRequested, this, &Panel::SlotShowContextMenu);
}

void WidgetMScriptControlPanel::LoadFromDevice(MCalverinScript_Device* device) {
    if (device == nullptr)
        return;
    m_device = device;
    ConnectDevice();
    m_scriptFileName = device->GetShownScript().fileName;
    m_referenceText = WithPlainLineEnds(device->GetShownScript().text);
    m_ui->tab_Script->SetText(m_referenceText);
    m_seenFiles.Note(m_device, m_scriptFileName);
    DescribeFileName();
    m_ui->pushButtonDebugCurrentSript->setEnabled(m_device != nullptr && device->GetWorld().Debugger() != nullptr);
    EnableControls(m_device != nullptr);
    SlotEnableSyncButton();
    m_ui->tab_Script->Editor().setFocus();
}

void WidgetMScriptControlPanel::ConnectDevice() {
    using Device = MCalverinScript_Device;
    using Panel = WidgetMScriptControlPanel;
    connect(m_device, &Device::SignalNotifyErrorChange, this, &Panel::SlotOnNotifyErrorChange);
    connect(m_device, &Device::SignalNotifyScriptChange, this, &Panel::SlotOnNotifyScriptChange);
    connect(m_device, &Device::SignalNotifyScriptFileNameChange, this, &Panel::SlotOnNotifyScriptFileNameChange);
    connect(m_ui->pushButtonDebugCurrentSript, &QPushButton::clicked, m_device, &Device::SlotShowDebugger);
}

void WidgetMScriptControlPanel::ForgetDevice() {
    if (m_device == nullptr)
        return;
    disconnect(m_device, nullptr, this, nullptr);
    disconnect(m_ui->pushButtonDebugCurrentSript, nullptr, m_device, nullptr);
    m_device = nullptr;
    CloseDialogs();
    EnableControls(false);
    m_ui->pushButtonDebugCurrentSript->setEnabled(false);
    m_ui->tab_Script->Editor().setReadOnly(true);
    m_ui->lineEditStatus->setText(tr("Released"));
}

void WidgetMScriptControlPanel::CloseDialogs() {
    while (m_isAtWork && QApplication::activePopupWidget() != nullptr)
        QApplication::activePopupWidget()->close();
    for (QDialog* dialog : findChildren<QDialog*>())
        if (dialog->isVisible())
            dialog->reject();
}

void WidgetMScriptControlPanel::EnableControls(bool isEnabled) {
    m_ui->widgetFile->setEnabled(isEnabled);
    m_ui->widgetDevice->setEnabled(isEnabled);
    m_ui->tab_Script->EnableEvaluation(isEnabled);
}

QString WidgetMScriptControlPanel::GetText() const {
    return m_ui->tab_Script->GetText();
}

void WidgetMScriptControlPanel::ShowFileName(MScriptDescription* description) {
    ShowFileName(description != nullptr ? description->GetDisplayText() : QString());
}

/// A name that is too long shows how it begins.
void WidgetMScriptControlPanel::ShowFileName(const QString& name) {
    m_ui->lineEditScriptFileName->setText(name.isEmpty() ? NoScript() : name);
    m_ui->lineEditScriptFileName->setToolTip(name);
    m_ui->lineEditScriptFileName->setCursorPosition(0);
}

/// To hear what a script is called takes a run of it, in which much may happen.
void WidgetMScriptControlPanel::DescribeFileName() {
    ShowFileName(DescribeFile(m_scriptFileName, &m_engine, m_device).get());
}

bool WidgetMScriptControlPanel::SlotCallEvaluateScript() {
    if (m_device == nullptr || m_isAtWork)
        return false;
    const Work work(*this);
    const AnalysisOutcome outcome = AnalyseScript(*m_device, GetText(), m_engine);
    m_ui->tab_Script->ShowAnalysis(outcome);
    return outcome.succeeded;
}

void WidgetMScriptControlPanel::SlotOpenFile() {
    if (m_device == nullptr || m_isAtWork)
        return;
    const Work work(*this);
    DialogSelectScript choice(this);
    choice.SetDevice(m_device);
    choice.Load(m_scriptFileName, &m_engine);
    if (choice.exec() != QDialog::Accepted || m_device == nullptr)
        return;
    MScriptDescription* description = choice.GetDescription();
    QString copy;
    if (description != nullptr && CopyScriptToProject(m_device, choice.GetPath(), &copy, this) && m_device != nullptr)
        TakeOpened(copy, *description);
}

/// The device runs what it ran: only the button gives it the text.
void WidgetMScriptControlPanel::TakeOpened(const QString& path, MScriptDescription& description) {
    const AnalysisOutcome loaded = LoadForAnalysis(*m_device, path);
    ShowFileName(&description);
    m_scriptFileName = path;
    m_seenFiles.Note(m_device, m_scriptFileName);
    m_ui->tab_Script->ReplaceText(WithPlainLineEnds(m_device->GetAnalysis().GetSet().scriptText));
    m_ui->tab_Script->SetDebugInfo(loaded.succeeded ? QStringLiteral("") : loaded.text);
}

bool WidgetMScriptControlPanel::SlotSaveFile() {
    return Save(false);
}

bool WidgetMScriptControlPanel::SlotSaveAsFile() {
    return Save(true);
}

bool WidgetMScriptControlPanel::Save(bool asNew) {
    if (m_device == nullptr || m_isAtWork)
        return false;
    const Work work(*this);
    if (!asNew && !m_seenFiles.MayReplace(m_device, m_scriptFileName, this))
        return false;
    ScriptSaving saving(*this, m_device, m_engine);
    const bool isSaved = asNew ? saving.SaveAs(m_scriptFileName, GetText()) : saving.Save(m_scriptFileName, GetText());
    if (!isSaved || m_device == nullptr)
        return isSaved;
    const auto description = DescribeFile(m_scriptFileName, &m_engine, m_device);
    ShowFileName(description.get());
    if (description == nullptr)
        m_scriptFileName.clear();
    m_seenFiles.Note(m_device, m_scriptFileName);
    if (m_device == nullptr)
        return true;
    ScriptSet& analysed = m_device->GetAnalysis().GetSet();
    analysed.scriptFileName = m_scriptFileName;
    analysed.scriptText = GetText();
    return true;
}

void WidgetMScriptControlPanel::SlotEnableSaveButton() {}

void WidgetMScriptControlPanel::SlotEnableSyncButton() {
    const bool isModified = IsModified();
    if (m_ui->pushButtonSync->isEnabledTo(m_ui->widgetDevice) == isModified)
        return;
    m_ui->pushButtonSync->setEnabled(isModified);
    m_ui->lineEditStatus->setText(isModified ? QStringLiteral("Modified") : QStringLiteral("Loaded"));
}

void WidgetMScriptControlPanel::SlotSynchronizeScript() {
    if (m_isAtWork)
        return;
    const PanelUse::Visit visit(m_use);
    const bool isSaved = !m_scriptFileName.isEmpty() && SlotSaveFile();
    if (m_device != nullptr)
        GiveToDevice(isSaved);
    if (m_device != nullptr)
        SlotEnableSyncButton();
}

/// @param isSaved whether the file holds the text, so that the device can load it from there.
void WidgetMScriptControlPanel::GiveToDevice(bool isSaved) {
    const Work work(*this);
    const QString file = isSaved ? m_scriptFileName : QString();
    m_ui->tab_Script->SetDebugInfo(tr("The device loads the script..."));
    const bool runs = m_device->UpdateScript(file, GetText());
    if (m_device == nullptr)
        return;
    const ShownScript::State shown = m_device->GetShownScript();
    m_referenceText = WithPlainLineEnds(shown.text);
    if (m_ui->checkBoxSetAsDefaultScript->isChecked())
        m_device->GetStoredSetup().SetScript(file, shown.text);
    m_ui->tab_Script->SetDebugInfo(runs ? QStringLiteral("") : shown.error);
}

void WidgetMScriptControlPanel::SlotRefreshFromDevice() {
    if (m_device == nullptr || m_isAtWork)
        return;
    const Work work(*this);
    const ShownScript::State shown = m_device->GetShownScript();
    m_referenceText = WithPlainLineEnds(shown.text);
    m_scriptFileName = shown.fileName;
    m_seenFiles.Note(m_device, m_scriptFileName);
    if (IsModified())
        m_ui->tab_Script->ReplaceText(m_referenceText);
    DescribeFileName();
    SlotEnableSyncButton();
}

void WidgetMScriptControlPanel::SlotOnNotifyLineErrorChange(int line) {
    m_ui->tab_Script->SlotOnNotifyLineErrorChange(line);
}

void WidgetMScriptControlPanel::SlotShowContextMenu(QPoint pt) {
    const Work work(*this);
    m_ui->tab_Script->SlotShowContextMenu(pt);
}

void WidgetMScriptControlPanel::SlotOpenFinder() {
    if (m_device == nullptr)
        return;
    const Work work(*this);
    SetupMemory memory = m_device->GetStoredSetup().Memory();
    m_ui->tab_Script->OpenFinder(memory);
    if (m_device != nullptr) // it may be gone by now
        m_device->GetStoredSetup().Memory() = memory;
}

void WidgetMScriptControlPanel::SlotFind(const QString& sSearch, bool bMatchCase, bool bDirDown) {
    m_ui->tab_Script->SlotFind(sSearch, bMatchCase, bDirDown);
}

void WidgetMScriptControlPanel::SlotOnNotifyErrorChange(const QString& sError) {
    m_ui->tab_Script->SetDebugInfo(sError);
}

/// What an analysis tells is no news, nor is what has been followed by other news.
void WidgetMScriptControlPanel::SlotOnNotifyScriptChange(const QString& sScript) {
    if (m_device == nullptr || m_device->GetShownScript().text != sScript)
        return;
    const bool wasModified = IsModified();
    m_referenceText = WithPlainLineEnds(sScript);
    if (!wasModified && IsModified())
        m_ui->tab_Script->ReplaceText(m_referenceText);
    if (!wasModified)
        m_seenFiles.Note(m_device, m_scriptFileName);
    SlotEnableSyncButton();
}

/// A text that the user has changed stays its file's.
void WidgetMScriptControlPanel::SlotOnNotifyScriptFileNameChange(const QString& sScriptFileName) {
    const bool isNews = m_device != nullptr && m_device->GetShownScript().fileName == sScriptFileName;
    if (!isNews || sScriptFileName == m_scriptFileName || IsModified())
        return;
    m_scriptFileName = sScriptFileName;
    m_seenFiles.Note(m_device, m_scriptFileName);
    ShowFileName(QDir::toNativeSeparators(sScriptFileName));
}

void WidgetMScriptControlPanel::reject() {}
