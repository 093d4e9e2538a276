#include "DialogAddVar.h"

#include <algorithm>

#include "DialogMessage.h"
#include "ui_DialogAddVar.h"
#include "VariableCheck.h"

DialogAddVar::DialogAddVar(QWidget* parent, bool isEditMode)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogAddVar>()) {
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setModal(true);
    m_ui->lineEditVarName->setEnabled(!isEditMode);
    m_ui->comboBoxVarType->setEnabled(!isEditMode);
    (isEditMode ? m_ui->lineEditVarValue : m_ui->lineEditVarName)->setFocus();
    connect(m_ui->lineEditVarName, &QLineEdit::textChanged, this, &DialogAddVar::SlotCheck);
    connect(m_ui->pushButtonOk, &QPushButton::clicked, this, &DialogAddVar::accept);
    connect(m_ui->pushButtonCancel, &QPushButton::clicked, this, &DialogAddVar::reject);
    SlotCheck();
}

DialogAddVar::~DialogAddVar() = default;

void DialogAddVar::SetName(const QString& name) {
    m_ui->lineEditVarName->setText(name);
}

QString DialogAddVar::GetName() const {
    return m_ui->lineEditVarName->text();
}

void DialogAddVar::SetType(const QString& type) {
    const int index = m_ui->comboBoxVarType->findText(type, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (index >= 0)
        m_ui->comboBoxVarType->setCurrentIndex(index);
}

QString DialogAddVar::GetType() const {
    return m_ui->comboBoxVarType->currentText();
}

void DialogAddVar::SetValue(const QString& value) {
    m_givenValue = value;
    m_ui->lineEditVarValue->setText(value);
    m_ui->lineEditVarValue->selectAll();
}

QString DialogAddVar::GetValue() const {
    return m_ui->lineEditVarValue->text();
}

void DialogAddVar::SetVariables(const ScriptVariables* variables) {
    m_variables = variables;
    SlotCheck();
}

void DialogAddVar::accept() {
    m_kind.type = GetType();
    const QString refusal = GetValue() == m_givenValue ? QString() : RefusalOf(GetValue(), m_kind);
    if (refusal.isNull())
        return QDialog::accept();
    DialogMessage::Warn(this, refusal);
    m_ui->lineEditVarValue->setFocus();
    m_ui->lineEditVarValue->selectAll();
}

bool DialogAddVar::IsTaken(const QString& name) const {
    return m_variables != nullptr &&
           std::any_of(m_variables->begin(), m_variables->end(),
                       [&](const MScriptVariable& variable) { return variable.name == name; });
}

void DialogAddVar::SlotCheck() {
    const QString name = GetName();
    m_ui->pushButtonOk->setEnabled(!name.isEmpty() && !IsTaken(name));
}
