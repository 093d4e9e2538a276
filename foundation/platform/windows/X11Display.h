#pragma once

#include <cstdlib>
#include <memory>
#include <string_view>

#include <xcb/xcb.h>

/// @file
/// What the sources of this folder share of the window system.

template <typename T>
using XcbReply = std::unique_ptr<T, decltype(&std::free)>;

/// Takes over what the window system has answered; null when it refused.
template <typename T>
XcbReply<T> OwnReply(T* reply) {
    return XcbReply<T>(reply, &std::free);
}

/// A connection of our own to the display that the environment names.   [host main]
class X11Display {
public:
    X11Display()
        : m_connection(xcb_connect(nullptr, nullptr)) {}
    ~X11Display() { xcb_disconnect(m_connection); }
    X11Display(const X11Display&) = delete;
    X11Display& operator=(const X11Display&) = delete;

    bool IsOpen() const { return xcb_connection_has_error(m_connection) == 0; }
    xcb_connection_t* Get() const { return m_connection; }

private:
    xcb_connection_t* const m_connection;
};

/// The number of a name; 0 when nobody uses it.
inline xcb_atom_t FindAtom(xcb_connection_t* display, std::string_view name) {
    const auto cookie = xcb_intern_atom(display, 1, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = OwnReply(xcb_intern_atom_reply(display, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

/// The window right above another, and the one at the bottom of all.
struct X11Parent {
    xcb_window_t parent = XCB_WINDOW_NONE;
    xcb_window_t root = XCB_WINDOW_NONE;
};

inline X11Parent FindParent(xcb_connection_t* display, xcb_window_t window) {
    const auto reply = OwnReply(xcb_query_tree_reply(display, xcb_query_tree(display, window), nullptr));
    return reply ? X11Parent{reply->parent, reply->root} : X11Parent{};
}
