#pragma once

#include <QApplication>

/// The Qt application object of a host that has none. A host that is a Qt program keeps its own, untouched.   [host main]
class QMfcApp : public QApplication {
    Q_OBJECT

public:
    /// Makes an application object with an argument count of 0. On a machine without a display it works without windows. The
    /// process's locale stays as it was.
    /// @return false when the process has one already; then nothing is done.
    static bool pluginInstance();
    /// Ends the application object that pluginInstance made, if there is one. While a dialog is open it stays: the dialog could not
    /// end without it.
    static void EndPluginInstance();

    /// A dialog that holds up the host begins or ends. Each begin has its end.
    static void EnterModalLoop();
    static void LeaveModalLoop();
    /// How many there are, one inside the other.
    static int ModalLoopCount() { return modalLoopCount; }

private:
    QMfcApp();

    static int modalLoopCount;
};

/// A dialog that holds up the host, for as long as this object lives.   [host main]
class ModalLoop {
public:
    ModalLoop() { QMfcApp::EnterModalLoop(); }
    ~ModalLoop() { QMfcApp::LeaveModalLoop(); }
    ModalLoop(const ModalLoop&) = delete;
    ModalLoop& operator=(const ModalLoop&) = delete;
};
