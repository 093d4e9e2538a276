#pragma once

#include <memory>

#include <QDialog>

namespace Ui {
class DialogScriptTextSelector;
}

/// Edits a script's text.   [host main]
class DialogScriptTextSelector : public QDialog {
    Q_OBJECT

public:
    DialogScriptTextSelector(QWidget* parent, const QString& text);
    ~DialogScriptTextSelector() override;

    /// The text as it stands, each character kept.
    QString GetText() const;

public Q_SLOTS:
    /// Asks first when the host would not get all of the text.
    void accept() override;

private:
    const std::unique_ptr<Ui::DialogScriptTextSelector> m_ui;
};
