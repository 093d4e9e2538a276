#pragma once

#include <memory>

#include <QDialog>
#include <QStandardItemModel>

namespace Ui {
class DialogInsertHelper;
}

/// What the host has to choose from, by the numbers that the dialog knows.
enum class InsertKind { Variable, UserGroup, Task, Cue, UserScreen, Device };

/// Asks which of the host's objects a script is to name. What is typed narrows the list to the names that hold it.   [host main]
class DialogInsertHelper : public QDialog {
    Q_OBJECT

public:
    explicit DialogInsertHelper(QWidget* parent);
    ~DialogInsertHelper() override;

    /// Shows the objects of one kind, in the order of their names.
    /// @param model the completion table, read during the call; null shows none.
    void Init(const QStandardItemModel* model, InsertKind kind);
    /// The chosen name; empty without one.
    QString GetText() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private Q_SLOTS:
    void SlotTextChanged(const QString& sText);
    void SlotCheckObjectList();

private:
    const std::unique_ptr<Ui::DialogInsertHelper> m_ui;
    QStandardItemModel m_objects; ///< of the kind, sorted
};
