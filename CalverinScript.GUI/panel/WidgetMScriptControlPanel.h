#pragma once

#include <memory>

#include <QDialog>
#include <QPointer>
#include <QScriptEngine>

#include "MCalverinScript_Device.h"
#include "PanelUse.h"
#include "SeenFiles.h"

struct MScriptDescription;

namespace Ui {
class WidgetMScriptControlPanel;
}

/// Shows the script that runs in a device, and puts another one in its place. What has been changed here and not been given to the
/// device is never written over by news of the device.   [host main]
///
/// Its device is null before LoadFromDevice and after ForgetDevice; then every slot does nothing.
class WidgetMScriptControlPanel : public QDialog {
    Q_OBJECT

public:
    /// @param use of the panel that it stands in; borrowed for its life.
    WidgetMScriptControlPanel(QWidget* parent, PanelUse& use);
    ~WidgetMScriptControlPanel() override;

    /// Shows the script of a device and its news from now on. Null does nothing.
    void LoadFromDevice(MCalverinScript_Device* device);
    /// The device ends: what is shown stays, and nothing can be done with it but to copy it.
    void ForgetDevice();
    /// Ends every dialog and menu that it has opened.
    void CloseDialogs();

public Q_SLOTS:
    bool SlotCallEvaluateScript();
    void SlotOpenFile();
    bool SlotSaveFile();
    bool SlotSaveAsFile();
    /// Does nothing: Save is always there.
    void SlotEnableSaveButton();
    void SlotEnableSyncButton();
    void SlotSynchronizeScript();
    void SlotOnNotifyLineErrorChange(int line);
    void SlotRefreshFromDevice();
    void SlotShowContextMenu(QPoint pt);
    void SlotOpenFinder();
    void SlotFind(const QString& sSearch, bool bMatchCase, bool bDirDown);
    void SlotOnNotifyErrorChange(const QString& sError);
    void SlotOnNotifyScriptChange(const QString& sScript);
    void SlotOnNotifyScriptFileNameChange(const QString& sScriptFileName);
    /// Escape closes no panel.
    void reject() override;

private:
    class Work;

    void SetUpEditor();
    void ConnectSignals();
    void ConnectDevice();
    QString GetText() const;
    bool IsModified() const { return GetText() != m_referenceText; }
    void ShowFileName(MScriptDescription* description);
    void ShowFileName(const QString& name);
    void DescribeFileName();
    bool Save(bool asNew);
    void GiveToDevice(bool isSaved);
    void TakeOpened(const QString& path, MScriptDescription& description);
    void EnableControls(bool isEnabled);

    const std::unique_ptr<Ui::WidgetMScriptControlPanel> m_ui;
    PanelUse& m_use;
    QPointer<MCalverinScript_Device> m_device; ///< not owned
    QScriptEngine m_engine;                    ///< for analyses; never the device's
    QString m_referenceText;                   ///< what the device runs, with plain line ends
    QString m_scriptFileName;                  ///< of the text's file; empty without one
    SeenFiles m_seenFiles;                     ///< those of the text
    bool m_isAtWork = false;                   ///< a slot waits for a dialog or for the device
};
