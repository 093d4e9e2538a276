#pragma once

#include "KXPTypes.h"

class IMInterface;

/// Whether a dialog can be shown here and now. A host without windows, or without a screen, would wait for ever for a dialog that
/// nobody can close.   [any host thread]
bool CanShowDialogs();

/// Whether windows can be made here and now, seen or not.   [any host thread]
bool CanMakeWindows();

/// The host's main window. @param host its root object, may be null. @return 0 for none.   [host main]
KXPWindow MainWindowOf(IMInterface* host);
