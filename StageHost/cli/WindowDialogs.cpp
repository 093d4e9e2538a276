#include "WindowDialogs.h"

#include <QCalendarWidget>
#include <QDialog>
#include <QDialogButtonBox>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include "BorderText.h"

namespace stagehost {

namespace {

/// A dialog around one widget, with Ok and Cancel. It is its parent's, which may go while it is open.
QPointer<QDialog> MakeDialog(const QString& title, QWidget* content, KXPWindow parent) {
    QPointer<QDialog> dialog = new QDialog(QWidget::find(parent));
    dialog->setWindowTitle(title);
    dialog->setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* layout = new QVBoxLayout(dialog);
    layout->addWidget(content);
    layout->addWidget(buttons);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog.data(), &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog.data(), &QDialog::reject);
    return dialog;
}

QPushButton& OkOf(const QDialog& dialog) {
    return *dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
}

bool Run(const QPointer<QDialog>& dialog) {
    const bool isAccepted = dialog->exec() == QDialog::Accepted;
    return isAccepted && dialog != nullptr;
}

} // namespace

std::optional<std::size_t> WindowDialogs::ChooseName(const std::string& title, const std::vector<std::string>& names,
                                                     int chosen, KXPWindow parent) {
    auto* list = new QListWidget;
    for (const std::string& name : names)
        list->addItem(FromBorderText(name));
    list->setAccessibleName(FromBorderText(title));
    const QPointer<QDialog> dialog = MakeDialog(FromBorderText(title), list, parent);
    QPushButton& ok = OkOf(*dialog);
    QObject::connect(list, &QListWidget::currentRowChanged, &ok, [&ok](int row) { ok.setEnabled(row >= 0); });
    QObject::connect(list, &QListWidget::itemDoubleClicked, dialog.data(), &QDialog::accept);
    list->setCurrentIndex(list->model()->index(chosen, 0));
    ok.setEnabled(list->currentRow() >= 0);
    std::optional<std::size_t> place;
    if (Run(dialog) && list->currentRow() >= 0)
        place = static_cast<std::size_t>(list->currentRow());
    delete dialog;
    return place;
}

std::optional<CalendarDay> WindowDialogs::ChooseDay(const CalendarDay& chosen, KXPWindow parent) {
    auto* calendar = new QCalendarWidget;
    calendar->setSelectedDate(QDate(chosen.year, chosen.month, chosen.day));
    const QPointer<QDialog> dialog = MakeDialog(QStringLiteral("Date"), calendar, parent);
    QObject::connect(calendar, &QCalendarWidget::activated, dialog.data(), &QDialog::accept);
    std::optional<CalendarDay> day;
    if (Run(dialog)) {
        const QDate date = calendar->selectedDate();
        day = CalendarDay{date.year(), date.month(), date.day()};
    }
    delete dialog;
    return day;
}

} // namespace stagehost
