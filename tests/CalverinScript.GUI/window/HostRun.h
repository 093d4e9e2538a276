#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>

#include "KXPTypes.h"

/// The main window of a small host.
class HostWindow {
public:
    HostWindow() = default;
    virtual ~HostWindow() = default;
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;

    virtual KXPWindow Id() const = 0;
    /// Lets the window system's news come in for a moment.   [host main]
    virtual void Idle() = 0;
    /// Destroys the window, also while a dialog is open.   [any]
    virtual void Destroy() = 0;
};

/// Runs a host with one device, as lines on standard input say:
///   show    opens the setup dialog and prints "code N" when it is closed
///   go      destroys the window
///   quit    prints the device's setup and ends
/// @param module,library,project the module's file, and the two folders for scripts. @return what main returns.
int RunHost(HostWindow& window, const char* module, const char* library, const char* project);
