#include "DialogInsertHelper.h"

#include <algorithm>
#include <iterator>

#include <QCoreApplication>
#include <QKeyEvent>

#include "CompletionTable.h"
#include "ObjectNames.h"
#include "ui_DialogInsertHelper.h"

namespace {

struct InsertKindRow {
    const char* title;
    std::uint32_t listType;
};

/// Indexed by InsertKind.
constexpr InsertKindRow kInsertKinds[] = {
    {"Select the Variable to insert", ObjectListType::kVariables},
    {"Select the UserGroup to insert", ObjectListType::kUserGroups},
    {"Select the Task to insert", ObjectListType::kTasks},
    {"Select the Cue to insert", ObjectListType::kCues},
    {"Select the UserScreen to insert", ObjectListType::kUserScreens},
    {"Select the Device to insert", ObjectListType::kDevices},
};
static_assert(std::size(kInsertKinds) == static_cast<std::size_t>(InsertKind::Device) + 1, "one row for each kind");

} // namespace

DialogInsertHelper::DialogInsertHelper(QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogInsertHelper>()) {
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    connect(m_ui->lineEditObject, &QLineEdit::textChanged, this, &DialogInsertHelper::SlotTextChanged);
    connect(m_ui->listObjectList, &QListWidget::itemSelectionChanged, this, &DialogInsertHelper::SlotCheckObjectList);
    connect(m_ui->listObjectList, &QListWidget::itemDoubleClicked, this, &DialogInsertHelper::accept);
    connect(m_ui->pushButtonOk, &QPushButton::clicked, this, &DialogInsertHelper::accept);
    connect(m_ui->pushButtonCancel, &QPushButton::clicked, this, &DialogInsertHelper::reject);
    SlotCheckObjectList();
    m_ui->lineEditObject->installEventFilter(this);
    m_ui->lineEditObject->setFocus();
}

DialogInsertHelper::~DialogInsertHelper() = default;

void DialogInsertHelper::Init(const QStandardItemModel* model, InsertKind kind) {
    const InsertKindRow& row = kInsertKinds[static_cast<std::size_t>(kind)];
    setWindowTitle(QLatin1String(row.title));
    if (model == nullptr)
        return;
    CopyNames(*model, row.listType, m_objects);
    ShowNames(m_objects, *m_ui->listObjectList);
    SlotCheckObjectList();
}

QString DialogInsertHelper::GetText() const {
    const QListWidgetItem* chosen = m_ui->listObjectList->currentItem();
    return chosen != nullptr ? chosen->text() : QString();
}

/// The keys that choose in a list do so from the filter too.
bool DialogInsertHelper::eventFilter(QObject* watched, QEvent* event) {
    constexpr int kChoosing[] = {Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown};
    const bool isChoosing = watched == m_ui->lineEditObject && event->type() == QEvent::KeyPress &&
                            std::find(std::begin(kChoosing), std::end(kChoosing),
                                      static_cast<QKeyEvent*>(event)->key()) != std::end(kChoosing);
    return isChoosing ? QCoreApplication::sendEvent(m_ui->listObjectList, event) : QDialog::eventFilter(watched, event);
}

void DialogInsertHelper::SlotTextChanged(const QString& sText) {
    QListWidget& list = *m_ui->listObjectList;
    QListWidgetItem* first = nullptr;
    for (int row = 0; row < list.count(); ++row) {
        QListWidgetItem* item = list.item(row);
        const bool holdsText = item->text().contains(sText, Qt::CaseInsensitive);
        item->setHidden(!holdsText);
        if (first == nullptr && holdsText)
            first = item;
    }
    list.setCurrentItem(first);
    SlotCheckObjectList();
}

void DialogInsertHelper::SlotCheckObjectList() {
    m_ui->pushButtonOk->setEnabled(m_ui->listObjectList->currentItem() != nullptr);
}
