#include "DialogFunctionSelector.h"

#include "ui_DialogFunctionSelector.h"

namespace {

QString HeadingStart() {
    return QStringLiteral("---- DEVICE");
}

} // namespace

DialogFunctionSelector::DialogFunctionSelector(QWidget* parent, const QStringList& functions, const QString& present)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogFunctionSelector>()) {
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    connect(m_ui->listWidgetFunctionList, &QListWidget::itemSelectionChanged, this,
            &DialogFunctionSelector::SlotCheckFunctionList);
    connect(m_ui->listWidgetFunctionList, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
    connect(m_ui->pushButtonOk, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_ui->pushButtonCancel, &QPushButton::clicked, this, &QDialog::reject);
    QPalette palette = m_ui->listWidgetFunctionList->palette(); // headings cannot be chosen, but are to be read
    palette.setColor(QPalette::Disabled, QPalette::Text, palette.color(QPalette::Active, QPalette::Text));
    m_ui->listWidgetFunctionList->setPalette(palette);
    // A list that gets the focus takes its first item by itself, unless it was told what is current.
    m_ui->listWidgetFunctionList->setCurrentIndex(QModelIndex());
    for (const QString& text : functions)
        AddLine(text, present);
}

DialogFunctionSelector::~DialogFunctionSelector() = default;

QString DialogFunctionSelector::Heading(const QString& deviceName) {
    return HeadingStart() + QLatin1Char(' ') + deviceName + QStringLiteral(" ----");
}

void DialogFunctionSelector::AddLine(const QString& text, const QString& present) {
    QListWidget& list = *m_ui->listWidgetFunctionList;
    auto* item = new QListWidgetItem(text, &list);
    item->setToolTip(text);
    if (text.startsWith(HeadingStart())) {
        QFont font = list.font();
        font.setBold(true);
        item->setFont(font);
        item->setFlags(Qt::NoItemFlags);
    } else if (text == present && list.currentItem() == nullptr) {
        list.setCurrentItem(item);
    }
}

QString DialogFunctionSelector::GetText() const {
    const QListWidgetItem* item = m_ui->listWidgetFunctionList->currentItem();
    return item != nullptr ? item->text() : QString();
}

void DialogFunctionSelector::SlotCheckFunctionList() {
    m_ui->pushButtonOk->setEnabled(m_ui->listWidgetFunctionList->currentItem() != nullptr);
}
