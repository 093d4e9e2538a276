#pragma once

#include <memory>

#include <QDialog>

namespace Ui {
class DialogFunctionSelector;
}

/// Picks a function of a script. Headings between the functions name the devices.   [host main]
class DialogFunctionSelector : public QDialog {
    Q_OBJECT

public:
    /// @param functions what the list shows, headings included. @param present what is chosen at first, if it is there.
    DialogFunctionSelector(QWidget* parent, const QStringList& functions, const QString& present);
    ~DialogFunctionSelector() override;

    /// The line above the functions of a device.
    static QString Heading(const QString& deviceName);
    /// The chosen function; empty for none.
    QString GetText() const;

private Q_SLOTS:
    void SlotCheckFunctionList();

private:
    void AddLine(const QString& text, const QString& present);

    const std::unique_ptr<Ui::DialogFunctionSelector> m_ui;
};
