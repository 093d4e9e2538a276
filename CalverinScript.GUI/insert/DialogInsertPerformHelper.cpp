#include "DialogInsertPerformHelper.h"

#include "CompletionTable.h"
#include "HostText.h"
#include "LatePicture.h"
#include "MScriptMngRemote.h"
#include "ObjectNames.h"
#include "ObjectRequest.h"
#include "ParamTable.h"
#include "PerformCommands.h"
#include "ui_DialogInsertPerformHelper.h"

namespace {

constexpr int kPatienceMs = 1000;
constexpr int kCommandTextRole = Qt::UserRole;

} // namespace

DialogInsertPerformHelper::DialogInsertPerformHelper(QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogInsertPerformHelper>()) {
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    SetUpParamTable(*m_ui->tableWidgetParams);
    m_patience.setSingleShot(true);
    m_patience.setInterval(kPatienceMs);
    ConnectSignals();
    ForgetCurrent(*m_ui->listCommandList);
    SlotRefreshResult();
    m_ui->listDeviceList->setFocus();
}

DialogInsertPerformHelper::~DialogInsertPerformHelper() = default;

void DialogInsertPerformHelper::ConnectSignals() {
    using Dialog = DialogInsertPerformHelper;
    connect(m_ui->checkBoxPerformAsync, &QCheckBox::stateChanged, this, &Dialog::SlotRefreshResult);
    connect(m_ui->listDeviceList, &QListWidget::itemSelectionChanged, this, &Dialog::SlotDeviceSelected);
    connect(m_ui->listCommandList, &QListWidget::itemSelectionChanged, this, &Dialog::SlotCommandSelected);
    connect(m_ui->tableWidgetParams, &QTableWidget::cellChanged, this, &Dialog::SlotRefreshResult);
    connect(m_ui->pushButtonOk, &QPushButton::clicked, this, &Dialog::accept);
    connect(m_ui->pushButtonCancel, &QPushButton::clicked, this, &Dialog::reject);
    connect(&m_patience, &QTimer::timeout, this, &Dialog::TellNoAnswer);
}

void DialogInsertPerformHelper::SetRemote(MScriptMngRemote* remote) {
    m_remote = remote;
}

void DialogInsertPerformHelper::SetModel(const QStandardItemModel* model) {
    if (model != nullptr)
        CopyNames(*model, ObjectListType::kDevices, m_devices);
    else
        m_devices.clear();
    ShowNames(m_devices, *m_ui->listDeviceList);
}

/// A question about another device is forgotten, with its answer.
void DialogInsertPerformHelper::SlotDeviceSelected() {
    m_request.reset();
    ShowNoCommands();
    const QListWidgetItem* device = m_ui->listDeviceList->currentItem();
    if (device == nullptr || m_remote == nullptr)
        return;
    m_request = std::make_unique<ObjectRequest>(ToHostText(device->text()), 0);
    connect(m_request.get(), &ObjectRequest::SignalAnswered, this, &DialogInsertPerformHelper::ShowCommands);
    m_patience.start();
    m_remote->AskAboutObject(*m_request);
}

void DialogInsertPerformHelper::ShowNoCommands() {
    m_patience.stop();
    m_ui->listCommandList->clear();
    ForgetCurrent(*m_ui->listCommandList);
    SlotCommandSelected();
}

void DialogInsertPerformHelper::ShowCommands(const QByteArray& objectText) {
    ShowNoCommands();
    const QIcon picture = LatePictureOf(":/perform");
    for (const OfferedCommand& command : ReadCommands(objectText.constData())) {
        auto* item = new QListWidgetItem(picture, command.name, m_ui->listCommandList);
        item->setData(kCommandTextRole, command.text);
    }
    ForgetCurrent(*m_ui->listCommandList);
}

void DialogInsertPerformHelper::TellNoAnswer() {
    auto* notice = new QListWidgetItem(tr("The host has not answered yet."), m_ui->listCommandList);
    notice->setFlags(Qt::NoItemFlags);
}

void DialogInsertPerformHelper::SlotCommandSelected() {
    const QListWidgetItem* command = m_ui->listCommandList->currentItem();
    const QString text = command != nullptr ? command->data(kCommandTextRole).toString() : QString();
    ShowParams(*m_ui->tableWidgetParams, ReadParams(text), [this] { SlotRefreshResult(); });
    SlotRefreshResult();
}

void DialogInsertPerformHelper::SlotRefreshResult() {
    const QListWidgetItem* device = m_ui->listDeviceList->currentItem();
    const QListWidgetItem* command = m_ui->listCommandList->currentItem();
    m_text.clear();
    if (device != nullptr && command != nullptr)
        m_text = PerformText(m_ui->checkBoxPerformAsync->isChecked(), device->text(), command->text(),
                             ReadParamTable(*m_ui->tableWidgetParams));
    m_ui->textEditResult->setPlainText(m_text);
    m_ui->pushButtonOk->setEnabled(!m_text.isEmpty());
}

/// A cell that is being edited gives up its text when it loses the focus.
void DialogInsertPerformHelper::accept() {
    m_ui->pushButtonOk->setFocus();
    QDialog::accept();
}
