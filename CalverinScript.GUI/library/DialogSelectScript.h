#pragma once

#include <memory>

#include <QDialog>
#include <QPointer>

#include "MCalverinScript_Device.h"
#include "ScriptList.h"

class QListWidgetItem;

namespace Ui {
class DialogSelectScript;
}

/// Picks a script of the library, shows what it says of itself, and brings scripts into the library and out of it.   [host main]
class DialogSelectScript : public QDialog {
    Q_OBJECT

public:
    explicit DialogSelectScript(QWidget* parent);
    ~DialogSelectScript() override;

    /// Borrowed; tells where the library is.
    void SetDevice(const MCalverinScript_Device* device) { m_device = device; }
    /// Fills the list. @param engine for reading the scripts; borrowed for the dialog's life.
    void Load(const QString& fileToSelect, QScriptEngine* engine);
    /// The chosen script's file; empty when none was chosen.
    const QString& GetPath() const { return m_path; }
    /// What the chosen script says of itself; null when none was chosen. Owned by the dialog.
    MScriptDescription* GetDescription() const { return m_description; }

public Q_SLOTS:
    void SlotYes();

private Q_SLOTS:
    void SlotNo();
    void SlotImport();
    void SlotExport();
    void SlotSelectedScriptChanged(QListWidgetItem* lpCurrentItem, QListWidgetItem* lpPreviousItem);
    void SlotSelectedScriptValidated(QListWidgetItem* lpSelectedItem);

private:
    enum class FileStep { Done, Again, ExportInstead };

    FileStep ImportOne();
    FileStep TakeIntoLibrary(const QString& source, std::unique_ptr<MScriptDescription> description);
    FileStep ExportOne();
    void EnableFields(bool isEnabled);

    const std::unique_ptr<Ui::DialogSelectScript> m_ui;
    ScriptList m_scripts;
    QPointer<const MCalverinScript_Device> m_device; ///< it may go while a dialog is open
    QScriptEngine* m_engine = nullptr;
    QString m_path;
    MScriptDescription* m_description = nullptr; ///< owned by the list
};
