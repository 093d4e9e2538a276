#include "WidgetCalverinScriptGUI.h"

#include <QFileInfo>

#include "DialogMessage.h"
#include "DialogSaveScript.h"
#include "DialogSaveScriptOptions.h"
#include "DialogSelectScript.h"
#include "IModuleServices.h"
#include "MScriptDescription.h"
#include "ScriptAnalysis.h"
#include "ScriptFiles.h"
#include "ScriptPlaces.h"
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
    const QString folder = LibraryFolderOf(m_device);
    const QString path = PathBelow(folder, QFileInfo(m_scriptFileName).fileName());
    if (m_scriptFileName.isEmpty() || folder.isEmpty() || !CanWriteScriptFile(path))
        SlotSaveAsFile();
    else if (SaveTo(path, m_scriptFileName))
        TakeSaved();
}

void WidgetCalverinScriptGUI::SlotSaveAsFile() {
    DialogSaveScript choice(this);
    choice.SetDevice(m_device);
    choice.Load(m_scriptFileName, GetScratchEngine());
    const QString folder = LibraryFolderOf(m_device);
    if (choice.exec() != QDialog::Accepted || folder.isEmpty())
        return;
    QString name = choice.GetFileName();
    if (name.right(3).toLower() != QLatin1String(".js"))
        name += QStringLiteral(".js");
    const QString libraryPath = PathBelow(folder, name);
    const QString projectFolder = ProjectFolderOf(m_device);
    const QString projectPath = projectFolder.isEmpty() ? QString() : PathBelow(projectFolder, name);
    if (!MayOverwrite(libraryPath, name) || !SaveTo(libraryPath, projectPath))
        return;
    m_scriptFileName = projectPath;
    TakeSaved();
}

bool WidgetCalverinScriptGUI::MayOverwrite(const QString& libraryPath, const QString& name) {
    return !QFileInfo::exists(libraryPath) ||
           DialogMessage::Ask(this, QStringLiteral("The file '") + name +
                                        QStringLiteral("' already exits. \n\nDo you want to overwrite it?"));
}

/// Tells the user what went wrong. What was on disk is then still there, and the text is still in the editor.
bool WidgetCalverinScriptGUI::SaveTo(const QString& libraryPath, const QString& projectPath) {
    const QString model = ReadScriptFile(m_scriptFileName).value_or(QString());
    QString failure;
    if (!WriteScriptFile(libraryPath, WithLineEndsOf(model, m_ui->tab_Script->GetText()), &failure)) {
        DialogMessage::Warn(this, tr("The script could not be saved as %1.\n\n%2").arg(libraryPath, failure));
        return false;
    }
    if (CopyScriptFile(libraryPath, projectPath))
        return true;
    DialogMessage::Warn(this, CopyFailureText());
    return false;
}

void WidgetCalverinScriptGUI::TakeSaved() {
    const auto description = DescribeOwnFile();
    ShowFileName(description.get());
    if (description == nullptr)
        m_scriptFileName.clear();
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

/// Left by Cancel, the device gets the changes and the file stays as it is.
void WidgetCalverinScriptGUI::AskWhereChangesGo() {
    SetupMemory& memory = m_device->GetStoredSetup().Memory();
    DialogSaveScriptOptions question(this, memory.saveOption);
    if (question.exec() != QDialog::Accepted)
        return;
    memory.saveOption = question.GetOption();
    if (memory.saveOption == kSaveInFile)
        SlotSaveFile();
    else if (memory.saveOption == kSaveAsNew)
        SlotSaveAsFile();
    else {
        ShowFileName(nullptr);
        m_scriptFileName.clear();
    }
}

/// A device stays linked to its script's file as long as it has the file's own text, line ends included.
QString WidgetCalverinScriptGUI::TextToStore() const {
    const QString text = m_ui->tab_Script->GetText();
    const QString inFile = ReadScriptFile(m_scriptFileName).value_or(QString());
    return WithPlainLineEnds(inFile) == text ? inFile : text;
}
