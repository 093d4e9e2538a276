#pragma once

#include <QWidget>

class QDateEdit;
class QPushButton;

/// A date in the setup form, from 1 January 1900 on. The button beside it is for a host that has a date dialog of its own.
/// [host main]
class MyDateEdit : public QWidget {
    Q_OBJECT

public:
    explicit MyDateEdit(QWidget* parent = nullptr);

    /// A date that no calendar has leaves the present one.
    void SetDate(int day, int month, int year);
    int GetYear() const;
    int GetMonth() const;
    int GetDay() const;

private:
    QDateEdit* m_dateEdit;
    QPushButton* m_wizardButton; ///< hidden without a date dialog of the host
};
