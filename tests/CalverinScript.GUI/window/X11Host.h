#pragma once

#include <cstdint>
#include <functional>

#include <xcb/xcb.h>

#include "KXPTypes.h"

/// A window of the window system's own, as a host without Qt has it, and what may be asked of the window system.
class X11Host {
public:
    /// @param parent 0 for a window of its own on the screen, or the one that it stands in. @param wantsKeyboard what it says of itself.
    explicit X11Host(KXPWindow parent = 0, bool wantsKeyboard = false);
    ~X11Host();
    X11Host(const X11Host&) = delete;
    X11Host& operator=(const X11Host&) = delete;

    KXPWindow Id() const { return m_id; }
    void Destroy();
    /// Gives a window the keyboard.
    void Focus(KXPWindow window);
    KXPWindow FocusedWindow() const;
    KXPWindow ParentOf(KXPWindow window) const;
    /// How many windows stand in one.
    int CountChildren(KXPWindow window) const;
    int Width() const;
    bool IsShown() const;
    /// Keys that this window was told of, since it was made. 0 while there are none.
    int CountKeys();

private:
    xcb_connection_t* const m_display;
    xcb_window_t m_id = 0;
    int m_keys = 0;
};
