#pragma once

#include <memory>

#include <QDialog>
#include <QPointer>
#include <QStandardItemModel>
#include <QTimer>

class MScriptMngRemote;
class ObjectRequest;

namespace Ui {
class DialogInsertPerformHelper;
}

/// Composes a line of script that performs a command of one of the host's devices.
///
/// The host is asked what a device can do when the device is chosen. Nothing waits for the answer: the dialog stays as it is, says so
/// after a while, and shows the commands whenever they come, if the device is still the chosen one.   [host main]
class DialogInsertPerformHelper : public QDialog {
    Q_OBJECT

public:
    explicit DialogInsertPerformHelper(QWidget* parent);
    ~DialogInsertPerformHelper() override;

    /// Who asks the host. Borrowed; forgotten when it goes. Null asks nobody, and no device has commands then.
    void SetRemote(MScriptMngRemote* remote);
    /// Shows the devices in the order of their names.
    /// @param model the completion table, read during the call; null shows none.
    void SetModel(const QStandardItemModel* model);
    /// How long a host may take before the dialog says that it does. A second if not set.
    void SetPatience(int ms) { m_patience.setInterval(ms); }
    /// The line; empty without a device and a command.
    QString GetText() const { return m_text; }

public Q_SLOTS:
    /// What is still being typed counts.
    void accept() override;

private Q_SLOTS:
    void SlotDeviceSelected();
    void SlotCommandSelected();
    void SlotRefreshResult();

private:
    void ConnectSignals();
    void ShowNoCommands();
    void ShowCommands(const QByteArray& objectText);
    void TellNoAnswer();

    const std::unique_ptr<Ui::DialogInsertPerformHelper> m_ui;
    QStandardItemModel m_devices; ///< sorted
    QPointer<MScriptMngRemote> m_remote;
    std::unique_ptr<ObjectRequest> m_request; ///< about the chosen device
    QTimer m_patience;
    QString m_text; ///< as the dialog shows it
};
