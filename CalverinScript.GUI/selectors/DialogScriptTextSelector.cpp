#include "DialogScriptTextSelector.h"

#include "DialogMessage.h"
#include "HostText.h"
#include "ui_DialogScriptTextSelector.h"

namespace {

constexpr int kFontPoints = 9; ///< as in the editor

} // namespace

DialogScriptTextSelector::DialogScriptTextSelector(QWidget* parent, const QString& text)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogScriptTextSelector>()) {
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setWindowFlag(Qt::WindowMaximizeButtonHint, true);
    QFont font(QStringLiteral("Lucida Console"), kFontPoints);
    font.setStyleHint(QFont::Monospace);
    m_ui->plainTextEdit->setFont(font);
    m_ui->plainTextEdit->setPlainText(text);
    connect(m_ui->pushButtonOk, &QPushButton::clicked, this, &DialogScriptTextSelector::accept);
    connect(m_ui->pushButtonCancel, &QPushButton::clicked, this, &QDialog::reject);
}

DialogScriptTextSelector::~DialogScriptTextSelector() = default;

/// The widget's own plain text makes blanks of characters that only look like them.
QString DialogScriptTextSelector::GetText() const {
    return m_ui->plainTextEdit->document()->toRawText().replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
}

void DialogScriptTextSelector::accept() {
    if (FitsHostText(GetText()) ||
        DialogMessage::Ask(this, QStringLiteral("The text has characters that the host does not know. They become "
                                                "\"?\".\nDo you want to continue anyway?")))
        QDialog::accept();
}
