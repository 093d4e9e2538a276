#pragma once

#include <memory>

#include <QDialog>

namespace Ui {
class DialogMessage;
}

/// A message, or a question with two answers. Both answers accept the dialog; only its close box and Escape reject it.
/// [host main]
class DialogMessage : public QDialog {
    Q_OBJECT

public:
    /// @param showCancel whether there is a second button. @param yesNo whether the buttons read "Yes" and "No".
    DialogMessage(QWidget* parent, const QString& title, const QString& text, bool showCancel, bool yesNo);
    ~DialogMessage() override;

    /// Shows or hides the box "Remember my choice."
    void ShowRememberChoice(bool isShown);
    /// Whether the first button was chosen.
    bool GetAnswer() const { return m_answer; }
    bool GetRememberChoice() const;

    /// Shows a warning and waits until it is closed.
    static void Warn(QWidget* parent, const QString& text);
    /// Asks under the title "Warning". @return whether the user said yes.
    static bool Ask(QWidget* parent, const QString& text);

private Q_SLOTS:
    void SlotYes();
    void SlotNo();

private:
    const std::unique_ptr<Ui::DialogMessage> m_ui;
    bool m_answer = false;
};
