#include <algorithm>

#include <xcb/xcb.h>

#include "NativeChild.h"
#include "X11Display.h"

namespace {

// Numbers of keys, from the X Window System's keysymdef.h.
constexpr xcb_keysym_t kTabKey = 0xff09;
constexpr xcb_keysym_t kLeftTabKey = 0xfe20;
constexpr xcb_keysym_t kAltKeys[] = {0xffe9, 0xffea};

bool KeyIs(xcb_connection_t* display, xcb_keycode_t code, xcb_keysym_t wanted) {
    const auto reply =
        OwnReply(xcb_get_keyboard_mapping_reply(display, xcb_get_keyboard_mapping(display, code, 1), nullptr));
    if (!reply)
        return false;
    const xcb_keysym_t* first = xcb_get_keyboard_mapping_keysyms(reply.get());
    const xcb_keysym_t* end = first + xcb_get_keyboard_mapping_keysyms_length(reply.get());
    return std::find(first, end, wanted) != end;
}

} // namespace

struct NativeChild::Part {
    NativeChild::News Understand(const xcb_generic_event_t& event);
    NativeChild::News UnderstandKey(const xcb_key_press_event_t& event);
    void Uncover();

    X11Display display;
    xcb_window_t window = XCB_WINDOW_NONE;
    xcb_window_t cover = XCB_WINDOW_NONE; ///< an invisible one above it, which takes the mouse
    NativeRect place;
    NativeKey lastKey;
};

NativeChild::NativeChild(std::uintptr_t window)
    : m_part(std::make_unique<Part>()) {
    m_part->window = static_cast<xcb_window_t>(window);
}

NativeChild::~NativeChild() {
    m_part->Uncover();
}

bool NativeChild::IsPartOf(std::uintptr_t parent) const {
    return m_part->display.IsOpen() && FindParent(m_part->display.Get(), m_part->window).parent == parent;
}

/// The first number of the hints says which of the others are meant; the second is whether the keyboard is wanted.
bool NativeChild::WantsKeyboard() const {
    xcb_connection_t* display = m_part->display.Get();
    if (!m_part->display.IsOpen())
        return false;
    const auto cookie = xcb_get_property(display, 0, m_part->window, XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, 0, 2);
    const auto reply = OwnReply(xcb_get_property_reply(display, cookie, nullptr));
    if (!reply || reply->format != 32 || reply->value_len < 2)
        return false;
    const auto* hints = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return (hints[0] & 1U) != 0 && hints[1] != 0;
}

void NativeChild::Fit(const NativeRect& place, bool isShown) {
    if (!m_part->display.IsOpen())
        return;
    m_part->place = place;
    const std::int32_t values[] = {place.x, place.y, std::max(place.width, 1), std::max(place.height, 1)};
    constexpr std::uint16_t kFields =
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;
    for (const xcb_window_t window : {m_part->window, m_part->cover})
        if (window != XCB_WINDOW_NONE)
            xcb_configure_window(m_part->display.Get(), window, kFields, values);
    if (isShown)
        xcb_map_window(m_part->display.Get(), m_part->window);
    xcb_flush(m_part->display.Get());
}

void NativeChild::SetEnabled(bool isEnabled) {
    xcb_connection_t* display = m_part->display.Get();
    if (!m_part->display.IsOpen())
        return;
    m_part->Uncover();
    const xcb_window_t parent = FindParent(display, m_part->window).parent;
    if (isEnabled || parent == XCB_WINDOW_NONE)
        return;
    const NativeRect& place = m_part->place;
    const std::uint32_t mask = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;
    m_part->cover = xcb_generate_id(display);
    xcb_create_window(display, 0, m_part->cover, parent, static_cast<std::int16_t>(place.x),
                      static_cast<std::int16_t>(place.y), static_cast<std::uint16_t>(std::max(place.width, 1)),
                      static_cast<std::uint16_t>(std::max(place.height, 1)), 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
    xcb_map_window(display, m_part->cover);
    xcb_flush(display);
}

void NativeChild::Part::Uncover() {
    if (cover == XCB_WINDOW_NONE)
        return;
    xcb_destroy_window(display.Get(), cover);
    xcb_flush(display.Get());
    cover = XCB_WINDOW_NONE;
}

int NativeChild::Watch() {
    if (!m_part->display.IsOpen())
        return -1;
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_KEY_PRESS;
    xcb_change_window_attributes(m_part->display.Get(), m_part->window, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(m_part->display.Get());
    return xcb_get_file_descriptor(m_part->display.Get());
}

NativeChild::News NativeChild::TakeNews() {
    if (!m_part->display.IsOpen())
        return News::None;
    while (const auto event = OwnReply(xcb_poll_for_event(m_part->display.Get()))) {
        const News news = m_part->Understand(*event);
        if (news != News::None)
            return news;
    }
    return News::None;
}

const NativeKey& NativeChild::LastKey() const {
    return m_part->lastKey;
}

NativeChild::News NativeChild::Part::Understand(const xcb_generic_event_t& event) {
    constexpr unsigned kSentBit = 0x80;
    switch (event.response_type & ~kSentBit) {
    case XCB_FOCUS_IN:
        return News::Focused;
    case XCB_DESTROY_NOTIFY:
        return News::Gone;
    case XCB_KEY_PRESS:
        return UnderstandKey(reinterpret_cast<const xcb_key_press_event_t&>(event));
    default:
        return News::None;
    }
}

NativeChild::News NativeChild::Part::UnderstandKey(const xcb_key_press_event_t& event) {
    lastKey = {event.detail, event.state, true};
    if (KeyIs(display.Get(), event.detail, kTabKey) || KeyIs(display.Get(), event.detail, kLeftTabKey))
        return (event.state & XCB_MOD_MASK_SHIFT) != 0 ? News::BackTab : News::Tab;
    const bool isAlt = std::any_of(std::begin(kAltKeys), std::end(kAltKeys),
                                   [&](xcb_keysym_t key) { return KeyIs(display.Get(), event.detail, key); });
    return isAlt || (event.state & XCB_MOD_MASK_1) != 0 ? News::AltKey : News::None;
}
