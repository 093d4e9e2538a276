#include "HostRun.h"

#include <cstdio>
#include <iostream>
#include <thread>

#include <dlfcn.h>

#include "PlainHost.h"

namespace {

class DialogHost : public plain::Host {
public:
    explicit DialogHost(const HostWindow& window)
        : m_window(window) {}
    KXPWindow GetMainWindow() override { return m_window.Id(); }

private:
    const HostWindow& m_window;
};

/// The lines of standard input, read on a thread of their own.
class Commands {
public:
    explicit Commands(HostWindow& window)
        : m_reader([this, &window] { Read(window); }) {}
    ~Commands() { m_reader.join(); }
    Commands(const Commands&) = delete;
    Commands& operator=(const Commands&) = delete;

    std::string Next(HostWindow& window) {
        for (;;) {
            {
                const std::lock_guard<std::mutex> guard(m_lock);
                if (!m_lines.empty()) {
                    const std::string line = m_lines.front();
                    m_lines.pop_front();
                    return line;
                }
            }
            window.Idle();
        }
    }

private:
    void Read(HostWindow& window) {
        for (std::string line; line != "quit";) {
            if (!std::getline(std::cin, line))
                line = "quit";
            if (line == "go") {
                window.Destroy();
                continue;
            }
            const std::lock_guard<std::mutex> guard(m_lock);
            m_lines.push_back(line);
        }
    }

    std::mutex m_lock;
    std::deque<std::string> m_lines;
    std::thread m_reader;
};

void Say(const char* form, unsigned number) {
    std::printf(form, number);
    std::fflush(stdout);
}

void Serve(IKXPDevice& device, HostWindow& window) {
    Commands commands(window);
    while (commands.Next(window) == "show")
        Say("code %u\n", static_cast<unsigned>(device.ShowSetup(nullptr)));
    char* setup = nullptr;
    device.GetSetup(&setup);
    std::printf("%s\n", setup);
    device.ReleaseString(&setup);
}

} // namespace

int RunHost(HostWindow& window, const char* module, const char* library, const char* project) {
    void* file = dlopen(module, RTLD_NOW);
    auto entry = file != nullptr ? reinterpret_cast<KXPEntryPoint>(dlsym(file, KXP_ENTRY_POINT_NAME)) : nullptr;
    IKXPModule* loaded = nullptr;
    if (entry == nullptr || entry(&loaded) != KXP_OK)
        return 2;
    DialogHost host(window);
    host.folders[KXP_FOLDER_SCRIPTS] = library;
    host.folders[KXP_FOLDER_PROJECT_USER_DATA] = project;
    loaded->Initialize(host.Root(), nullptr, nullptr);
    loaded->SetDeviceHost(&host);
    IKXPDevice* device = nullptr;
    if (loaded->CreateDevice(nullptr, &device) != KXP_OK)
        return 3;
    plain::Variables variables;
    device->SetDeviceVariables(&variables);
    device->SetName("Desk");
    Serve(*device, window);
    device->Release();
    loaded->Terminate(nullptr);
    loaded->Release();
    return 0;
}
