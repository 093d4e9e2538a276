#include "MyDateEdit.h"

#include <QDateEdit>
#include <QHBoxLayout>
#include <QIcon>
#include <QPointer>
#include <QPushButton>

#include "IDialogManager2.h"
#include "Pictures.h"

namespace {

constexpr int kDateWidth = 200;

/// The host's dialog for one use.
class DateDialog {
public:
    explicit DateDialog(IDialogManager2& manager)
        : m_dialog(manager.CreateDateDialog()) {}
    ~DateDialog() {
        if (m_dialog != nullptr)
            m_dialog->Release();
    }
    DateDialog(const DateDialog&) = delete;
    DateDialog& operator=(const DateDialog&) = delete;

    IDateDialog* Get() const { return m_dialog; }

private:
    IDateDialog* const m_dialog;
};

} // namespace

MyDateEdit::MyDateEdit(QWidget* parent)
    : QWidget(parent)
    , m_dateEdit(new QDateEdit(this))
    , m_wizardButton(new QPushButton(this)) {
    RegisterPictures();
    m_wizardButton->setIcon(QIcon(QStringLiteral(":/wizard")));
    m_dateEdit->setObjectName(QStringLiteral("dateEdit"));
    m_dateEdit->setFixedWidth(kDateWidth);
    m_dateEdit->setDateRange(QDate(1900, 1, 1), QDate(9999, 12, 31));
    m_dateEdit->setCalendarPopup(true);
    m_wizardButton->setObjectName(QStringLiteral("pushButtonDateWizard"));
    m_wizardButton->setAccessibleName(tr("Choose a date"));
    m_wizardButton->hide();
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_dateEdit);
    row->addWidget(m_wizardButton);
    setFocusProxy(m_dateEdit);
    connect(m_wizardButton, &QPushButton::clicked, this, &MyDateEdit::SlotOpenWizard);
}

void MyDateEdit::SetDialogManager(IDialogManager2* manager) {
    m_manager = manager;
    m_wizardButton->setVisible(manager != nullptr);
}

/// The form may have been made anew when the dialog is left.
void MyDateEdit::SlotOpenWizard() {
    if (m_manager == nullptr)
        return;
    const DateDialog dialog(*m_manager);
    if (dialog.Get() == nullptr)
        return;
    const QPointer<MyDateEdit> kept(this);
    dialog.Get()->SetParentWindow(m_parentWindow);
    dialog.Get()->SetDate(GetYear(), GetMonth(), GetDay());
    if (dialog.Get()->Run() == KXP_OK && kept != nullptr)
        SetDate(dialog.Get()->GetDay(), dialog.Get()->GetMonth(), dialog.Get()->GetYear());
}

void MyDateEdit::SetDate(int day, int month, int year) {
    m_dateEdit->setDate(QDate(year, month, day));
}

int MyDateEdit::GetYear() const {
    return m_dateEdit->date().year();
}

int MyDateEdit::GetMonth() const {
    return m_dateEdit->date().month();
}

int MyDateEdit::GetDay() const {
    return m_dateEdit->date().day();
}
