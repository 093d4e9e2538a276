#pragma once

#include <QWidget>

#include "KXPTypes.h"

class IDialogManager2;
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

    /// With a manager the button is there. Borrowed for the widget's life; null hides the button.
    void SetDialogManager(IDialogManager2* manager);
    /// The window for the host's dialog; 0 for none.
    void SetParentWindow(KXPWindow parent) { m_parentWindow = parent; }

private Q_SLOTS:
    /// Lets the user choose a date in the host's dialog.
    void SlotOpenWizard();

private:
    IDialogManager2* m_manager = nullptr;
    KXPWindow m_parentWindow = 0;
    QDateEdit* m_dateEdit;
    QPushButton* m_wizardButton; ///< hidden without a date dialog of the host
};
