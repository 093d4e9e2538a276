#include "DialogSaveScriptOptions.h"

#include "ui_DialogSaveScriptOptions.h"

DialogSaveScriptOptions::DialogSaveScriptOptions(QWidget* parent, int storedOption)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogSaveScriptOptions>()) {
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    m_ui->radioButtonInternal->setChecked(storedOption == kSaveInDevice);
    m_ui->radioButtonUpdateScript->setChecked(storedOption == kSaveInFile);
    m_ui->radioButtonNewScript->setChecked(storedOption == kSaveAsNew);
    connect(m_ui->pushButtonOk, &QPushButton::clicked, this, &DialogSaveScriptOptions::SlotYes);
    connect(m_ui->pushButtonCancel, &QPushButton::clicked, this, &DialogSaveScriptOptions::SlotNo);
}

DialogSaveScriptOptions::~DialogSaveScriptOptions() = default;

int DialogSaveScriptOptions::GetOption() const {
    if (m_ui->radioButtonInternal->isChecked())
        return kSaveInDevice;
    return m_ui->radioButtonUpdateScript->isChecked() ? kSaveInFile : kSaveAsNew;
}

void DialogSaveScriptOptions::SlotYes() {
    accept();
}

void DialogSaveScriptOptions::SlotNo() {
    reject();
}
