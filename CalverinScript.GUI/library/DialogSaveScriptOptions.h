#pragma once

#include <memory>

#include <QDialog>

namespace Ui {
class DialogSaveScriptOptions;
}

/// Where the changes of a script that has a file go.
enum SaveScriptOption { kSaveInDevice = 0, kSaveInFile = 1, kSaveAsNew = 2 };

/// Asks where the changes of a script that has a file go.   [host main]
class DialogSaveScriptOptions : public QDialog {
    Q_OBJECT

public:
    /// @param storedOption the choice that is made at first.
    DialogSaveScriptOptions(QWidget* parent, int storedOption);
    ~DialogSaveScriptOptions() override;

    /// One of SaveScriptOption.
    int GetOption() const;

private Q_SLOTS:
    void SlotYes();
    void SlotNo();

private:
    const std::unique_ptr<Ui::DialogSaveScriptOptions> m_ui;
};
