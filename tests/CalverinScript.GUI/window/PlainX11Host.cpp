#include <cstdio>
#include <cstdlib>

#include <dlfcn.h>
#include <xcb/xcb.h>

#include "PlainHost.h"

/// A host without Qt: a window of the window system alone, a device, and its setup dialog as often as it is told.
///   plain_x11_host MODULE LIBRARY PROJECT COUNT
/// Prints "code N" for each dialog that was closed, and the setup at the end.

namespace {

class WindowHost : public plain::Host {
public:
    KXPWindow GetMainWindow() override { return window; }
    KXPWindow window = 0;
};

/// A window of 1000 by 800, shown.
class Window {
public:
    Window()
        : m_display(xcb_connect(nullptr, nullptr)) {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_display)).data;
        m_id = xcb_generate_id(m_display);
        xcb_create_window(m_display, XCB_COPY_FROM_PARENT, m_id, screen->root, 20, 20, 1000, 800, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_BACK_PIXEL, &screen->white_pixel);
        const char title[] = "plain host";
        xcb_change_property(m_display, XCB_PROP_MODE_REPLACE, m_id, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                            sizeof(title) - 1, title);
        xcb_map_window(m_display, m_id);
        xcb_flush(m_display);
    }
    ~Window() { xcb_disconnect(m_display); }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    KXPWindow Id() const { return m_id; }

private:
    xcb_connection_t* const m_display;
    xcb_window_t m_id = 0;
};

} // namespace

int main(int argc, char** argv) {
    void* file = argc == 5 ? dlopen(argv[1], RTLD_NOW) : nullptr;
    auto entry = file != nullptr ? reinterpret_cast<KXPEntryPoint>(dlsym(file, KXP_ENTRY_POINT_NAME)) : nullptr;
    IKXPModule* module = nullptr;
    if (entry == nullptr || entry(&module) != KXP_OK)
        return 2;
    const Window window;
    WindowHost host;
    host.window = window.Id();
    host.folders[KXP_FOLDER_SCRIPTS] = argv[2];
    host.folders[KXP_FOLDER_PROJECT_USER_DATA] = argv[3];
    module->Initialize(host.Root(), nullptr, nullptr);
    module->SetDeviceHost(&host);
    IKXPDevice* device = nullptr;
    if (module->CreateDevice(nullptr, &device) != KXP_OK)
        return 3;
    plain::Variables variables;
    device->SetDeviceVariables(&variables);
    device->SetName("Desk");
    for (int left = std::atoi(argv[4]); left > 0; --left) {
        std::printf("code %u\n", device->ShowSetup(nullptr));
        std::fflush(stdout);
    }
    char* setup = nullptr;
    device->GetSetup(&setup);
    std::printf("%s\n", setup);
    device->ReleaseString(&setup);
    device->Release();
    module->Terminate(nullptr);
    module->Release();
    return 0;
}
