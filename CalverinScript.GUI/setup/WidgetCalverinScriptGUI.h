#pragma once

#include <memory>

#include <QDialog>
#include <QPointer>
#include <QScriptEngine>

#include "AnalysisOutcome.h"
#include "DialogInsertHelper.h"
#include "KXPTypes.h"
#include "MCalverinScript_Device.h"
#include "ScriptRecords.h"
#include "SeenFiles.h"

struct MScriptDescription;

namespace Ui {
class WidgetCalverinScriptGUI;
}

/// The setup dialog of one device: the script's description and the form of its settings, and in programming mode its text, its
/// variables and the options. It works on copies. Nothing reaches the device before the dialog is accepted and stored, but for what
/// Load, Save and Save as do to files.   [host main]
class WidgetCalverinScriptGUI : public QDialog {
    Q_OBJECT

public:
    explicit WidgetCalverinScriptGUI(QWidget* parent);
    ~WidgetCalverinScriptGUI() override;

    /// Shows the device's setup. The device is borrowed; when it goes first, the dialog is rejected. Null does nothing.
    void LoadFromDevice(MCalverinScript_Device* device);
    /// Gives the device what the dialog holds, after it was accepted.
    /// @return as SetupDesk::Accept, 13 for null.
    KXPCode StoreToDevice(MCalverinScript_Device* device);
    /// Loads a script of the library by its file name or path, as if it had been chosen.
    void OpenScript(const QString& path);

    /// The engine for analyses; never the device's. Made with the first of them.
    QScriptEngine* GetScratchEngine();
    const ScriptVariables& GetUserVariables() const;
    bool IsRemoveDefaultsChecked() const;

Q_SIGNALS:
    /// Goes to the editor, at its caret.
    void SignalInsertText(const QString& text);

public Q_SLOTS:
    bool SlotCallEvaluateScript();
    void SlotOpenFile();
    void SlotSaveFile();
    void SlotSaveAsFile();
    void SlotExtractFromScript();
    void SlotOpenHelpFile();
    void SlotChangeOnProgrammingMode();
    void SlotChangeOnEnableAutoCompletion();
    void SlotCurrentTabChanged(int iCurrentTab);
    void SlotUpdateRemoveDefaultCmdVarFromSetupUI();
    /// The device takes the resources that the form names now; it has its own again when the dialog is left by Cancel.
    void SlotTakeResources();
    void SlotOpenFinder();
    // Each lets the user choose an object and inserts its name; does nothing while the script is not shown.
    void SlotInsertVariable() { InsertObject(InsertKind::Variable); }
    void SlotInsertUserGroup() { InsertObject(InsertKind::UserGroup); }
    void SlotInsertTask() { InsertObject(InsertKind::Task); }
    void SlotInsertCue() { InsertObject(InsertKind::Cue); }
    void SlotInsertUserScreen() { InsertObject(InsertKind::UserScreen); }
    void SlotInsertDevice() { InsertObject(InsertKind::Device); }
    /// Lets the user compose a call of QCalverin.Perform and inserts it; does nothing while the script is not shown.
    void SlotInsertPerform();
    void accept() override;
    void reject() override;
    /// Rejects the dialog with all that it has opened, since what it stands on is gone.
    void SlotGiveUp();

protected:
    void closeEvent(QCloseEvent* event) override;
    /// Escape, which closes so much else, asks before it leaves what was changed; Cancel is meant as it is.
    void keyPressEvent(QKeyEvent* event) override;

private:
    void ConnectSignals();
    void ConnectInsertions();
    void InsertObject(InsertKind kind);
    template <typename Dialog>
    void InsertFrom(Dialog& dialog);
    void LoadOptions();
    void LoadScript();
    void LoadLists();
    void LoadAnalysis();
    bool Evaluate();
    bool EvaluateUnlessKnown();
    void Extract();
    void RefreshForm();
    void UpdateDescription();
    MScriptDescription Describe(MScriptDescription record);
    std::unique_ptr<MScriptDescription> DescribeOwnFile();
    void UpdateRemoveDefaults();
    void ShowLoadedFile();
    void ShowFileName(MScriptDescription* description);

    void OpenFile(const QString& path);
    void TakeOpened(const QString& path, MScriptDescription& description);
    bool SaveFile();
    void TakeSaved();
    bool IsChangedSinceFile() const;
    bool AskWhereChangesGo();
    QString TextToStore() const;
    DeviceSetup MakeSetup() const;
    std::string SetupNow() const;

    const std::unique_ptr<Ui::WidgetCalverinScriptGUI> m_ui;
    QPointer<MCalverinScript_Device> m_device; ///< not owned
    QString m_scriptFileName;                  ///< of the project's copy; empty when the device has no script file
    std::unique_ptr<QScriptEngine> m_engine;
    ScriptVariables m_loadedVariables; ///< as the device had them; read-only
    ScriptSettings m_settings;         ///< what the form shows
    AnalysisOutcome m_analysis;        ///< the last one
    QString m_analysedText;            ///< its text
    SeenFiles m_seenFiles;             ///< those of the script
    std::string m_openedSetup;         ///< what the dialog held before anybody changed it, as SetupNow
    bool m_isGivenUp = false;
    bool m_isTableFull = false; ///< the completion table was filled before the dialog was shown
};
