#pragma once

#include <memory>

#include <QDialog>
#include <QPointer>

#include "MCalverinScript_Device.h"
#include "ScriptList.h"

class QListWidgetItem;

namespace Ui {
class DialogSaveScript;
}

/// Asks under which name a script goes into the library: that of one that is there, or a new one.   [host main]
class DialogSaveScript : public QDialog {
    Q_OBJECT

public:
    explicit DialogSaveScript(QWidget* parent);
    ~DialogSaveScript() override;

    /// Borrowed; tells where the library is.
    void SetDevice(const MCalverinScript_Device* device) { m_device = device; }
    /// Fills the list. @param engine for reading the scripts.
    void Load(const QString& fileToSelect, QScriptEngine* engine);
    /// The name as the user typed it.
    QString GetFileName() const;

private Q_SLOTS:
    void SlotYes();
    void SlotNo();
    void SlotSelectedScriptChanged(QListWidgetItem* lpCurrentItem, QListWidgetItem* lpPreviousItem);
    void SlotSelectedScriptValidated(QListWidgetItem* lpSelectedItem);

private:
    void CheckName();

    const std::unique_ptr<Ui::DialogSaveScript> m_ui;
    ScriptList m_scripts;
    QPointer<const MCalverinScript_Device> m_device; ///< it may go while a dialog is open
};
