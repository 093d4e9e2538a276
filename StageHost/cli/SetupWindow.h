#pragma once

#include <memory>

#include <QTimer>
#include <QWidget>

#include "KXPTypes.h"

namespace stagehost {

class Device;

/// A window of the host, on which devices show their setup dialogs. There is one at a time.   [host main]
class SetupWindow {
public:
    /// @param title what the window shows, the show's file.
    explicit SetupWindow(const QString& title);
    ~SetupWindow();
    SetupWindow(const SetupWindow&) = delete;
    SetupWindow& operator=(const SetupWindow&) = delete;

    /// Whether there is a screen that a user sees.
    static bool IsPossible();
    /// The window that there is; 0 for none.
    static KXPWindow Current();

    /// Lets a device show its setup dialog and waits until it is closed; Ctrl-C closes it.
    /// @return as Device::ShowSetup.
    KXPCode Show(Device& device);

private:
    std::unique_ptr<QWidget> m_window;
    QTimer m_watch;
};

} // namespace stagehost
