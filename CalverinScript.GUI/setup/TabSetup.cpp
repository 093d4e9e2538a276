#include "TabSetup.h"

#include "LongText.h"
#include "MScriptDescription.h"
#include "ui_TabSetup.h"

TabSetup::TabSetup(QWidget* parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::TabSetup>()) {
    m_ui->setupUi(this);
    m_ui->scrollAreaSetup->viewport()->setAutoFillBackground(false); // the form stands on the tab's own ground
    m_ui->widgetSetup->setAutoFillBackground(false);
}

TabSetup::~TabSetup() = default;

void TabSetup::ShowDescription(const MScriptDescription& description) {
    m_ui->lineEditTitle->setText(description.title);
    m_ui->lineEditVersion->setText(description.version);
    m_ui->lineEditAuthor->setText(description.author);
    for (QLineEdit* field : {m_ui->lineEditTitle, m_ui->lineEditVersion, m_ui->lineEditAuthor})
        ShowFromTheBeginning(*field);
    m_ui->plainTextEditDescription->setPlainText(description.description);
}

SettingsForm& TabSetup::Form() {
    return *m_ui->widgetSetup;
}
