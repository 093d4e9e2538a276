#include "DialogSaveScript.h"

#include "ScriptPlaces.h"
#include "ui_DialogSaveScript.h"

namespace {

/// A name with a separator would leave the library's folder.
bool IsFileName(const QString& name) {
    return !name.trimmed().isEmpty() && !name.contains(QLatin1Char('/')) && !name.contains(QLatin1Char('\\'));
}

} // namespace

DialogSaveScript::DialogSaveScript(QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogSaveScript>())
    , m_scripts((m_ui->setupUi(this), *m_ui->listWidgetScripts)) {
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setWindowFlag(Qt::WindowMaximizeButtonHint, true);
    m_ui->lineEditFileName->setFocus();
    connect(m_ui->listWidgetScripts, &QListWidget::currentItemChanged, this,
            &DialogSaveScript::SlotSelectedScriptChanged);
    connect(m_ui->listWidgetScripts, &QListWidget::itemDoubleClicked, this,
            &DialogSaveScript::SlotSelectedScriptValidated);
    connect(m_ui->lineEditFileName, &QLineEdit::textChanged, this, &DialogSaveScript::CheckName);
    connect(m_ui->pushButtonOk, &QPushButton::clicked, this, &DialogSaveScript::SlotYes);
    connect(m_ui->pushButtonCancel, &QPushButton::clicked, this, &DialogSaveScript::SlotNo);
}

DialogSaveScript::~DialogSaveScript() = default;

void DialogSaveScript::Load(const QString& fileToSelect, QScriptEngine* engine) {
    m_scripts.Load(m_device, fileToSelect, engine);
}

QString DialogSaveScript::GetFileName() const {
    return m_ui->lineEditFileName->text();
}

void DialogSaveScript::CheckName() {
    m_ui->pushButtonOk->setEnabled(IsFileName(GetFileName()));
}

void DialogSaveScript::SlotSelectedScriptChanged(QListWidgetItem* lpCurrentItem, QListWidgetItem* /*lpPreviousItem*/) {
    if (const MScriptDescription* description = ScriptList::DescriptionOf(lpCurrentItem))
        m_ui->lineEditFileName->setText(description->fileName);
}

void DialogSaveScript::SlotSelectedScriptValidated(QListWidgetItem* lpSelectedItem) {
    SlotSelectedScriptChanged(lpSelectedItem, nullptr);
    SlotYes();
}

void DialogSaveScript::SlotYes() {
    accept();
}

void DialogSaveScript::SlotNo() {
    reject();
}
