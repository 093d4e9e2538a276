#include "ExitGuard.h"

#include <cstdio>
#include <cstdlib>
#include <system_error>

#include "ShowClock.h"

namespace stagehost {

ExitGuard::ExitGuard(std::chrono::milliseconds limit, int exitCode, std::string message) {
    try {
        m_watcher = std::thread(
            [this, limit = MachineTime(limit), exitCode, text = std::move(message)] { Watch(limit, exitCode, text); });
    } catch (const std::system_error&) {
        // The call is better made unguarded than not at all: most that are guarded end something.
    }
}

ExitGuard::~ExitGuard() {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_disarmed = true;
    }
    m_disarm.notify_all();
    if (m_watcher.joinable())
        m_watcher.join();
}

void ExitGuard::Watch(std::chrono::milliseconds limit, int exitCode, const std::string& message) {
    std::unique_lock<std::mutex> hold(m_lock);
    if (!m_disarm.wait_for(hold, limit, [this] { return m_disarmed; }))
        LeaveAtOnce(exitCode, message);
}

void LeaveAtOnce(int exitCode, const std::string& message) {
    std::fflush(stdout);
    std::fprintf(stderr, "stagehost: %s\n", message.c_str());
    std::fflush(stderr);
    std::_Exit(exitCode);
}

} // namespace stagehost
