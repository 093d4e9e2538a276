#pragma once

#include <memory>

#include <QWidget>

#include "ScriptRecords.h"

class DialogAddVar;
class QTableWidgetItem;

namespace Ui {
class TabVariables;
}

/// The table of the variables that a script publishes, where the user gives them values of their own.   [host main]
class TabVariables : public QWidget {
    Q_OBJECT

public:
    explicit TabVariables(QWidget* parent = nullptr);
    ~TabVariables() override;

    /// Takes variables over and shows them.
    void SetVariables(const ScriptVariables& variables);
    /// The variables with what the user has changed.
    const ScriptVariables& GetVariables() const { return m_variables; }

Q_SIGNALS:
    void SignalExtract();

public Q_SLOTS:
    void SlotCreateVariable();
    void SlotEditVariableItem(QTableWidgetItem* lpItem);
    void SlotEditVariable();
    void SlotCheckBoxState(QTableWidgetItem* lpItem);
    void SlotRemoveVariable();
    void SlotCheckMonitorList();

private:
    void SetUpTable();
    void ConnectSignals();
    void ShowTable();
    void ShowRow(int row, const MScriptVariable& variable);
    QString TextAt(int row, int column) const;
    MScriptVariable* FindVariable(const QString& name);
    void TakeEdited(const DialogAddVar& dialog, const QString& oldName, const QString& oldType);
    void AddVariable(const QString& name, const QString& type, const QString& value);
    void RemoveFirst(const QString& name);

    const std::unique_ptr<Ui::TabVariables> m_ui;
    ScriptVariables m_variables;
};
