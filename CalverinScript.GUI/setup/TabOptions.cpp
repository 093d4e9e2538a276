#include "TabOptions.h"

#include "ui_TabOptions.h"

TabOptions::TabOptions(QWidget* parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::TabOptions>()) {
    m_ui->setupUi(this);
    m_ui->scrollAreaOptions->viewport()->setAutoFillBackground(false); // the options stand on the tab's own ground
    m_ui->widgetOptions->setAutoFillBackground(false);
    connect(m_ui->checkBoxRemoveStaticCmdVar, &QCheckBox::clicked, this, &TabOptions::SignalRemoveDefaultsClicked);
    connect(m_ui->checkBoxEnableAutoCompletion, &QCheckBox::clicked, this, &TabOptions::SignalAutoCompletionClicked);
}

TabOptions::~TabOptions() = default;

void TabOptions::SetOptions(const SetupOptions& options) {
    m_ui->checkBoxRegisterUserGroup->setChecked(options.registerAllUserGroups);
    m_ui->checkBoxEnableAutoCompletion->setChecked(options.autoCompletion);
    m_ui->checkBoxUserMode->setChecked(options.userModeVisible);
    m_ui->checkBoxRunProject->setChecked(options.runModeVisible);
}

SetupOptions TabOptions::GetOptions() const {
    return {m_ui->checkBoxRegisterUserGroup->isChecked(), m_ui->checkBoxEnableAutoCompletion->isChecked(),
            m_ui->checkBoxUserMode->isChecked(), m_ui->checkBoxRunProject->isChecked()};
}

void TabOptions::ShowDebugger(bool isEnabled) {
    m_ui->labelDebugger->setText(isEnabled ? QStringLiteral("The Debugger is enabled.")
                                           : QStringLiteral("The Debugger is disabled."));
}

void TabOptions::ShowRemoveDefaults(bool users, std::optional<bool> scripts) {
    m_ui->checkBoxRemoveStaticCmdVar->setChecked(scripts.value_or(users));
    m_ui->checkBoxRemoveStaticCmdVar->setEnabled(!scripts.has_value());
}

bool TabOptions::IsRemoveDefaultsChecked() const {
    return m_ui->checkBoxRemoveStaticCmdVar->isChecked();
}
