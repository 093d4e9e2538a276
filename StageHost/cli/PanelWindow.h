#pragma once

#include <map>
#include <memory>

#include <QTimer>
#include <QWidget>

#include "IKXPDevicePanel.h"
#include "Session.h"

class QCheckBox;
class QComboBox;
class QPushButton;

namespace stagehost {

/// A window of the host with the control panel of a device, and with what a host does around it: user modes, themes,
/// start and stop, stored commands.   [host main]
class PanelWindow : public QWidget {
    Q_OBJECT

public:
    /// @param title what the window shows, the show's file.
    explicit PanelWindow(const QString& title);
    ~PanelWindow() override;

    /// Shows a device's panel and waits until the window is closed; Ctrl-C closes it. A device that a script of the
    /// panel holds up is released then. @param session borrowed for the call. @return false when the device makes no
    /// panel.
    bool Run(Session& session, Device& device, const Options& options);

    /// The commands that were stored meanwhile: their texts by their names.
    const std::map<QString, QString>& Stored() const { return m_stored; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void MakeControls();
    void FillControls(const HostSettings& settings);
    void ShowPanel();
    void StartOrStop();
    void EditStoredCommands();
    void Look();
    void End();

    QComboBox* m_modes;
    QComboBox* m_themes;
    QCheckBox* m_shown;
    QPushButton* m_startStop;
    QPushButton* m_commands;
    Session* m_session = nullptr; ///< while Run is under way, as are the next two
    Device* m_device = nullptr;
    IKXPDevicePanel* m_panel = nullptr;
    bool m_isStarted = true;
    bool m_isOver = false;
    int m_looksInVain = 0; ///< since the window was closed, without that Run has seen it
    QTimer m_watch;
    std::chrono::milliseconds m_timeout{0};
    std::map<QString, QString> m_stored;
};

} // namespace stagehost
