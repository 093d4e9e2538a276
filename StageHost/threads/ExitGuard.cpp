#include "ExitGuard.h"

#include <cstdio>
#include <cstdlib>

namespace stagehost {

ExitGuard::ExitGuard(std::chrono::milliseconds limit, int exitCode, std::string message)
    : m_watcher([this, limit, exitCode, text = std::move(message)] { Watch(limit, exitCode, text); }) {}

ExitGuard::~ExitGuard() {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_disarmed = true;
    }
    m_disarm.notify_all();
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
