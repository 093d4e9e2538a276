#include "DialogMessage.h"

#include "ui_DialogMessage.h"

namespace {

QString WarningTitle() {
    return QStringLiteral("Warning");
}

} // namespace

DialogMessage::DialogMessage(QWidget* parent, const QString& title, const QString& text, bool showCancel, bool yesNo)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogMessage>()) {
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setWindowTitle(title);
    m_ui->labelMessage->setText(text);
    m_ui->pushButtonCancel->setEnabled(showCancel);
    m_ui->pushButtonCancel->setVisible(showCancel);
    if (yesNo) {
        m_ui->pushButtonOk->setText(QStringLiteral("&Yes"));
        m_ui->pushButtonCancel->setText(QStringLiteral("&No"));
    }
    m_ui->pushButtonOk->setFocus();
    connect(m_ui->pushButtonOk, &QPushButton::clicked, this, &DialogMessage::SlotYes);
    connect(m_ui->pushButtonCancel, &QPushButton::clicked, this, &DialogMessage::SlotNo);
}

DialogMessage::~DialogMessage() = default;

void DialogMessage::ShowRememberChoice(bool isShown) {
    m_ui->checkBoxRememberChoice->setVisible(isShown);
}

bool DialogMessage::GetRememberChoice() const {
    return m_ui->checkBoxRememberChoice->isChecked();
}

void DialogMessage::SlotYes() {
    m_answer = true;
    accept();
}

void DialogMessage::SlotNo() {
    m_answer = false;
    accept();
}

void DialogMessage::Warn(QWidget* parent, const QString& text) {
    DialogMessage message(parent, WarningTitle(), text, false, false);
    message.ShowRememberChoice(false);
    message.exec();
}

bool DialogMessage::Ask(QWidget* parent, const QString& text) {
    DialogMessage message(parent, WarningTitle(), text, true, true);
    message.ShowRememberChoice(false);
    return message.exec() == QDialog::Accepted && message.GetAnswer();
}
