#include <xcb/xcb.h>

#include "NativeWindow.h"
#include "X11Display.h"

namespace {

/// Grows a rectangle by what the window manager says it has drawn: left, right, top and bottom.
void AddFrame(xcb_connection_t* display, xcb_window_t window, NativeRect& rect) {
    constexpr std::uint32_t kSides = 4;
    const auto cookie =
        xcb_get_property(display, 0, window, FindAtom(display, "_NET_FRAME_EXTENTS"), XCB_ATOM_CARDINAL, 0, kSides);
    const auto reply = OwnReply(xcb_get_property_reply(display, cookie, nullptr));
    if (!reply || reply->format != 32 || reply->value_len < kSides)
        return;
    const auto* sides = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    rect.x -= static_cast<int>(sides[0]);
    rect.y -= static_cast<int>(sides[2]);
    rect.width += static_cast<int>(sides[0] + sides[1]);
    rect.height += static_cast<int>(sides[2] + sides[3]);
}

bool HasProperty(xcb_connection_t* display, xcb_window_t window, xcb_atom_t name) {
    const auto cookie = xcb_get_property(display, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, 0);
    const auto reply = OwnReply(xcb_get_property_reply(display, cookie, nullptr));
    return reply && reply->type != XCB_ATOM_NONE;
}

} // namespace

bool GetNativeFrame(std::uintptr_t window, NativeRect& inside, NativeRect& frame) {
    const X11Display display;
    if (!display.IsOpen())
        return false;
    const auto id = static_cast<xcb_window_t>(window);
    const auto asked = xcb_get_geometry(display.Get(), id);
    const auto geometry = OwnReply(xcb_get_geometry_reply(display.Get(), asked, nullptr));
    if (!geometry)
        return false;
    const auto moved = xcb_translate_coordinates(display.Get(), id, geometry->root, 0, 0);
    const auto place = OwnReply(xcb_translate_coordinates_reply(display.Get(), moved, nullptr));
    if (!place)
        return false;
    inside = {place->dst_x, place->dst_y, geometry->width, geometry->height};
    frame = inside;
    AddFrame(display.Get(), id, frame);
    return true;
}

bool FocusNativeWindow(std::uintptr_t window) {
    const X11Display display;
    if (!display.IsOpen())
        return false;
    const auto cookie = xcb_set_input_focus_checked(display.Get(), XCB_INPUT_FOCUS_PARENT,
                                                    static_cast<xcb_window_t>(window), XCB_CURRENT_TIME);
    return OwnReply(xcb_request_check(display.Get(), cookie)) == nullptr;
}

std::uintptr_t FindTopWindow(std::uintptr_t window) {
    const X11Display display;
    if (!display.IsOpen())
        return window;
    const xcb_atom_t managed = FindAtom(display.Get(), "WM_STATE");
    auto top = static_cast<xcb_window_t>(window);
    while (!HasProperty(display.Get(), top, managed)) {
        const X11Parent above = FindParent(display.Get(), top);
        if (above.parent == XCB_WINDOW_NONE || above.parent == above.root)
            return top;
        top = above.parent;
    }
    return top;
}

void SendNativeKey(std::uintptr_t window, const NativeKey& key) {
    const X11Display display;
    if (!display.IsOpen())
        return;
    xcb_key_press_event_t event = {};
    event.response_type = key.isPressed ? XCB_KEY_PRESS : XCB_KEY_RELEASE;
    event.detail = static_cast<xcb_keycode_t>(key.code);
    event.time = XCB_CURRENT_TIME;
    event.event = static_cast<xcb_window_t>(window);
    event.root = FindParent(display.Get(), event.event).root;
    event.state = static_cast<std::uint16_t>(key.modifiers);
    event.same_screen = 1;
    const auto cookie = xcb_send_event_checked(display.Get(), 1, event.event,
                                               key.isPressed ? XCB_EVENT_MASK_KEY_PRESS : XCB_EVENT_MASK_KEY_RELEASE,
                                               reinterpret_cast<const char*>(&event));
    // The display has it before this connection ends, or it might never look at it.
    OwnReply(xcb_request_check(display.Get(), cookie));
}

struct NativeWindowWatch::Connection {
    X11Display display;
};

NativeWindowWatch::NativeWindowWatch(std::uintptr_t window)
    : m_window(window)
    , m_connection(std::make_unique<Connection>()) {
    if (!m_connection->display.IsOpen())
        return;
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    const auto cookie = xcb_change_window_attributes_checked(
        m_connection->display.Get(), static_cast<xcb_window_t>(window), XCB_CW_EVENT_MASK, &mask);
    m_isGone = OwnReply(xcb_request_check(m_connection->display.Get(), cookie)) != nullptr;
}

NativeWindowWatch::~NativeWindowWatch() = default;

int NativeWindowWatch::Descriptor() const {
    return m_connection->display.IsOpen() ? xcb_get_file_descriptor(m_connection->display.Get()) : -1;
}

bool NativeWindowWatch::IsGone() {
    constexpr unsigned kSentBit = 0x80;
    if (!m_connection->display.IsOpen())
        return m_isGone;
    while (const auto event = OwnReply(xcb_poll_for_event(m_connection->display.Get()))) {
        const bool destroyed = (event->response_type & ~kSentBit) == XCB_DESTROY_NOTIFY;
        if (destroyed && reinterpret_cast<const xcb_destroy_notify_event_t*>(event.get())->window == m_window)
            m_isGone = true;
    }
    return m_isGone;
}
