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
    /// The variable whose items, and whose script's type of value, a value has to fit.
    void SetKind(const MScriptVariable& variable) { m_kind = variable; }
    /// Names of these variables are refused. Borrowed; null at first.
    void SetVariables(const ScriptVariables* variables);

public Q_SLOTS:
    /// A value that was entered and does not fit the type is refused, with the reason, and the dialog stays.
    void accept() override;

private Q_SLOTS:
    void SlotCheck();

private:
    bool IsTaken(const QString& name) const;

    const std::unique_ptr<Ui::DialogAddVar> m_ui;
    const ScriptVariables* m_variables = nullptr;
    MScriptVariable m_kind;
    QString m_givenValue; ///< stays whatever it is
};
