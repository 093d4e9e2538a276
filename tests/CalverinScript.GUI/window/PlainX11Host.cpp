#include <chrono>
#include <thread>

#include <xcb/xcb.h>

#include "HostRun.h"

/// A host without Qt, with a window of the window system's own.
///   plain_x11_host MODULE LIBRARY PROJECT

namespace {

class X11Window : public HostWindow {
public:
    X11Window()
        : m_display(xcb_connect(nullptr, nullptr)) {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_display)).data;
        m_id = xcb_generate_id(m_display);
        xcb_create_window(m_display, XCB_COPY_FROM_PARENT, m_id, screen->root, 20, 20, 1000, 800, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_BACK_PIXEL, &screen->white_pixel);
        const char title[] = "small host";
        xcb_change_property(m_display, XCB_PROP_MODE_REPLACE, m_id, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                            sizeof(title) - 1, title);
        xcb_map_window(m_display, m_id);
        xcb_flush(m_display);
    }
    ~X11Window() override { xcb_disconnect(m_display); }

    KXPWindow Id() const override { return m_id; }
    void Idle() override { std::this_thread::sleep_for(std::chrono::milliseconds(10)); }
    void Destroy() override {
        xcb_destroy_window(m_display, m_id);
        xcb_flush(m_display);
    }

private:
    xcb_connection_t* const m_display;
    xcb_window_t m_id = 0;
};

} // namespace

int main(int argc, char** argv) {
    X11Window window;
    return argc == 4 ? RunHost(window, argv[1], argv[2], argv[3]) : 1;
}
