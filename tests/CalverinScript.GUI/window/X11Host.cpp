#include "X11Host.h"

#include <cstdlib>
#include <memory>

namespace {

template <typename T>
std::unique_ptr<T, decltype(&std::free)> Own(T* reply) {
    return {reply, &std::free};
}

} // namespace

X11Host::X11Host(KXPWindow parent, bool wantsKeyboard)
    : m_display(xcb_connect(nullptr, nullptr)) {
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_display)).data;
    const std::uint32_t values[] = {screen->white_pixel, XCB_EVENT_MASK_KEY_PRESS};
    m_id = xcb_generate_id(m_display);
    xcb_create_window(m_display, XCB_COPY_FROM_PARENT, m_id,
                      parent != 0 ? static_cast<xcb_window_t>(parent) : screen->root, 20, 20, 400, 300, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK,
                      values);
    const std::uint32_t hints[9] = {1, wantsKeyboard ? 1U : 0U};
    if (wantsKeyboard)
        xcb_change_property(m_display, XCB_PROP_MODE_REPLACE, m_id, XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, 32, 9, hints);
    if (parent == 0)
        xcb_map_window(m_display, m_id);
    xcb_flush(m_display);
}

X11Host::~X11Host() {
    xcb_disconnect(m_display);
}

void X11Host::Destroy() {
    xcb_destroy_window(m_display, m_id);
    xcb_flush(m_display);
}

void X11Host::Focus(KXPWindow window) {
    xcb_set_input_focus(m_display, XCB_INPUT_FOCUS_PARENT, static_cast<xcb_window_t>(window), XCB_CURRENT_TIME);
    xcb_flush(m_display);
}

KXPWindow X11Host::FocusedWindow() const {
    const auto reply = Own(xcb_get_input_focus_reply(m_display, xcb_get_input_focus(m_display), nullptr));
    return reply ? reply->focus : 0;
}

KXPWindow X11Host::ParentOf(KXPWindow window) const {
    const auto cookie = xcb_query_tree(m_display, static_cast<xcb_window_t>(window));
    const auto reply = Own(xcb_query_tree_reply(m_display, cookie, nullptr));
    return reply ? reply->parent : 0;
}

int X11Host::CountChildren(KXPWindow window) const {
    const auto cookie = xcb_query_tree(m_display, static_cast<xcb_window_t>(window));
    const auto reply = Own(xcb_query_tree_reply(m_display, cookie, nullptr));
    return reply ? reply->children_len : 0;
}

int X11Host::Width() const {
    const auto reply = Own(xcb_get_geometry_reply(m_display, xcb_get_geometry(m_display, m_id), nullptr));
    return reply ? reply->width : 0;
}

bool X11Host::IsShown() const {
    const auto cookie = xcb_get_window_attributes(m_display, m_id);
    const auto reply = Own(xcb_get_window_attributes_reply(m_display, cookie, nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

int X11Host::CountKeys() {
    constexpr unsigned kSentBit = 0x80;
    while (const auto event = Own(xcb_poll_for_event(m_display)))
        m_keys += (event->response_type & ~kSentBit) == XCB_KEY_PRESS ? 1 : 0;
    return m_keys;
}
