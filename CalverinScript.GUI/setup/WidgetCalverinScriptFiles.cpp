#include "WidgetCalverinScriptGUI.h"

#include "DialogMessage.h"
#include "DialogSaveScriptOptions.h"
#include "DialogSelectScript.h"
#include "IModuleServices.h"
#include "MScriptDescription.h"
#include "ScriptAnalysis.h"
#include "ScriptFiles.h"
#include "ScriptPlaces.h"
#include "ScriptSaving.h"
#include "ui_WidgetCalverinScriptGUI.h"

/// What the setup dialog does with script files. The text goes to the library first and is copied to the project from there.

void WidgetCalverinScriptGUI::SlotOpenFile() {
    OpenFile(QString());
}

void WidgetCalverinScriptGUI::OpenScript(const QString& path) {
    OpenFile(path);
}

void WidgetCalverinScriptGUI::OpenFile(const QString& path) {
    DialogSelectScript choice(this);
    choice.SetDevice(m_device);
    choice.Load(path.isEmpty() ? m_scriptFileName : path, GetScratchEngine());
    if (!path.isEmpty())
        choice.SlotYes();
    else if (choice.exec() != QDialog::Accepted)
        return;
    MScriptDescription* description = choice.GetDescription();
    QString copy;
    if (m_device != nullptr && description != nullptr && CopyScriptToProject(m_device, choice.GetPath(), &copy, this))
        TakeOpened(copy, *description);
}

void WidgetCalverinScriptGUI::TakeOpened(const QString& path, MScriptDescription& description) {
    m_ui->tab_Script->SetDebugInfo(QStringLiteral(""));
    const AnalysisOutcome loaded = LoadForAnalysis(*m_device, path);
    ShowFileName(&description);
    m_scriptFileName = path;
    m_seenFiles.Note(m_device, m_scriptFileName);
    m_ui->tab_Script->ReplaceText(m_device->GetAnalysis().GetSet().scriptText);
    if (loaded.succeeded) {
        m_ui->tab_Variables->SetVariables({});
        SlotExtractFromScript();
    } else {
        m_ui->tab_Script->SetDebugInfo(loaded.text);
    }
    m_ui->tab_Setup->ShowDescription(description);
}

void WidgetCalverinScriptGUI::SlotSaveFile() {
    SaveFile();
}

/// @return false when the user kept what another program has written.
bool WidgetCalverinScriptGUI::SaveFile() {
    if (!m_seenFiles.MayReplace(m_device, m_scriptFileName, this))
        return false;
    if (ScriptSaving(*this, m_device, *GetScratchEngine()).Save(m_scriptFileName, m_ui->tab_Script->GetText()))
        TakeSaved();
    return true;
}

void WidgetCalverinScriptGUI::SlotSaveAsFile() {
    if (ScriptSaving(*this, m_device, *GetScratchEngine()).SaveAs(m_scriptFileName, m_ui->tab_Script->GetText()))
        TakeSaved();
}

void WidgetCalverinScriptGUI::TakeSaved() {
    const auto description = DescribeOwnFile();
    ShowFileName(description.get());
    if (description == nullptr)
        m_scriptFileName.clear();
    m_seenFiles.Note(m_device, m_scriptFileName);
    if (m_device == nullptr)
        return;
    ScriptSet& analysed = m_device->GetAnalysis().GetSet();
    analysed.scriptFileName = m_scriptFileName;
    analysed.scriptText = m_ui->tab_Script->GetText();
}

bool WidgetCalverinScriptGUI::IsChangedSinceFile() const {
    if (m_scriptFileName.isEmpty())
        return false;
    const QString inFile = ReadScriptFile(m_scriptFileName).value_or(QString());
    return WithPlainLineEnds(inFile) != m_ui->tab_Script->GetText();
}

/// Left by Cancel, the device gets the changes and the file stays as it is. @return false to go on with the dialog.
bool WidgetCalverinScriptGUI::AskWhereChangesGo() {
    DialogSaveScriptOptions question(this, m_device->GetStoredSetup().Memory().saveOption);
    const bool isAnswered = question.exec() == QDialog::Accepted;
    if (m_device == nullptr || m_isGivenUp)
        return false;
    if (!isAnswered)
        return true;
    const int option = question.GetOption();
    m_device->GetStoredSetup().Memory().saveOption = option;
    bool isDone = true;
    if (option == kSaveInFile)
        isDone = SaveFile();
    else if (option == kSaveAsNew)
        SlotSaveAsFile();
    else {
        ShowFileName(nullptr);
        m_scriptFileName.clear();
    }
    return isDone && !m_isGivenUp;
}

/// A device stays linked to its script's file as long as it has the file's own text, line ends included.
QString WidgetCalverinScriptGUI::TextToStore() const {
    const QString text = m_ui->tab_Script->GetText();
    const QString inFile = ReadScriptFile(m_scriptFileName).value_or(QString());
    return WithPlainLineEnds(inFile) == text ? inFile : text;
}
