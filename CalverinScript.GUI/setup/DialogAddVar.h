#pragma once

#include <memory>

#include <QDialog>

#include "ScriptRecords.h"

namespace Ui {
class DialogAddVar;
}

/// Asks for a variable: its name, its type and its value. In edit mode name and type are shown alone.   [host main]
class DialogAddVar : public QDialog {
    Q_OBJECT

public:
    DialogAddVar(QWidget* parent, bool isEditMode);
    ~DialogAddVar() override;

    void SetName(const QString& name);
    QString GetName() const;
    /// A type that is not in the list leaves the present one.
    void SetType(const QString& type);
    QString GetType() const;
    void SetValue(const QString& value);
    QString GetValue() const;
    /// Names of these variables are refused. Borrowed; null at first.
    void SetVariables(const ScriptVariables* variables);

private Q_SLOTS:
    void SlotCheck();

private:
    bool IsTaken(const QString& name) const;

    const std::unique_ptr<Ui::DialogAddVar> m_ui;
    const ScriptVariables* m_variables = nullptr;
};
