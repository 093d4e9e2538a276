#include <cstdlib>
#include <string_view>

#include <xcb/xcb.h>

#include "NativeWindow.h"

namespace {

template <typename T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

template <typename T>
Reply<T> Own(T* reply) {
    return Reply<T>(reply, &std::free);
}

/// A connection to the display that the environment names.
class Display {
public:
    Display()
        : m_connection(xcb_connect(nullptr, nullptr)) {}
    ~Display() { xcb_disconnect(m_connection); }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    bool IsOpen() const { return xcb_connection_has_error(m_connection) == 0; }
    xcb_connection_t* Get() const { return m_connection; }

private:
    xcb_connection_t* const m_connection;
};

xcb_atom_t FindAtom(xcb_connection_t* display, std::string_view name) {
    const auto cookie = xcb_intern_atom(display, 1, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = Own(xcb_intern_atom_reply(display, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

/// Grows a rectangle by what the window manager says it has drawn: left, right, top and bottom.
void AddFrame(xcb_connection_t* display, xcb_window_t window, NativeRect& rect) {
    constexpr std::uint32_t kSides = 4;
    const auto cookie =
        xcb_get_property(display, 0, window, FindAtom(display, "_NET_FRAME_EXTENTS"), XCB_ATOM_CARDINAL, 0, kSides);
    const auto reply = Own(xcb_get_property_reply(display, cookie, nullptr));
    if (!reply || reply->format != 32 || reply->value_len < kSides)
        return;
    const auto* sides = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    rect.x -= static_cast<int>(sides[0]);
    rect.y -= static_cast<int>(sides[2]);
    rect.width += static_cast<int>(sides[0] + sides[1]);
    rect.height += static_cast<int>(sides[2] + sides[3]);
}

} // namespace

bool GetNativeFrame(std::uintptr_t window, NativeRect& frame) {
    const Display display;
    if (!display.IsOpen())
        return false;
    const auto id = static_cast<xcb_window_t>(window);
    const auto asked = xcb_get_geometry(display.Get(), id);
    const auto geometry = Own(xcb_get_geometry_reply(display.Get(), asked, nullptr));
    if (!geometry)
        return false;
    const auto moved = xcb_translate_coordinates(display.Get(), id, geometry->root, 0, 0);
    const auto place = Own(xcb_translate_coordinates_reply(display.Get(), moved, nullptr));
    if (!place)
        return false;
    frame = {place->dst_x, place->dst_y, geometry->width, geometry->height};
    AddFrame(display.Get(), id, frame);
    return true;
}

bool FocusNativeWindow(std::uintptr_t window) {
    const Display display;
    if (!display.IsOpen())
        return false;
    const auto cookie = xcb_set_input_focus_checked(display.Get(), XCB_INPUT_FOCUS_PARENT,
                                                    static_cast<xcb_window_t>(window), XCB_CURRENT_TIME);
    return Own(xcb_request_check(display.Get(), cookie)) == nullptr;
}

struct NativeWindowWatch::Connection {
    Display display;
};

NativeWindowWatch::NativeWindowWatch(std::uintptr_t window)
    : m_window(window)
    , m_connection(std::make_unique<Connection>()) {
    if (!m_connection->display.IsOpen())
        return;
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    const auto cookie = xcb_change_window_attributes_checked(
        m_connection->display.Get(), static_cast<xcb_window_t>(window), XCB_CW_EVENT_MASK, &mask);
    m_isGone = Own(xcb_request_check(m_connection->display.Get(), cookie)) != nullptr;
}

NativeWindowWatch::~NativeWindowWatch() = default;

int NativeWindowWatch::Descriptor() const {
    return m_connection->display.IsOpen() ? xcb_get_file_descriptor(m_connection->display.Get()) : -1;
}

bool NativeWindowWatch::IsGone() {
    constexpr unsigned kSentBit = 0x80;
    if (!m_connection->display.IsOpen())
        return m_isGone;
    while (const auto event = Own(xcb_poll_for_event(m_connection->display.Get()))) {
        const bool destroyed = (event->response_type & ~kSentBit) == XCB_DESTROY_NOTIFY;
        if (destroyed && reinterpret_cast<const xcb_destroy_notify_event_t*>(event.get())->window == m_window)
            m_isGone = true;
    }
    return m_isGone;
}
