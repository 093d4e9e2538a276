#include "MyDateEdit.h"

#include <QDateEdit>
#include <QHBoxLayout>
#include <QIcon>
#include <QPushButton>

#include "Pictures.h"

namespace {

constexpr int kDateWidth = 200;

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
