#include "ExitGuard.h"

#include <cstdio>
#include <cstdlib>

namespace stagehost {

ExitGuard::ExitGuard(std::chrono::milliseconds limit, int exitCode, std::string message)
    : watcher_([this, limit, exitCode, text = std::move(message)] { Watch(limit, exitCode, text); }) {}

ExitGuard::~ExitGuard() {
    {
        const std::lock_guard<std::mutex> hold(lock_);
        disarmed_ = true;
    }
    disarm_.notify_all();
    watcher_.join();
}

void ExitGuard::Watch(std::chrono::milliseconds limit, int exitCode, const std::string& message) {
    std::unique_lock<std::mutex> hold(lock_);
    if (!disarm_.wait_for(hold, limit, [this] { return disarmed_; }))
        LeaveAtOnce(exitCode, message);
}

void LeaveAtOnce(int exitCode, const std::string& message) {
    std::fflush(stdout);
    std::fprintf(stderr, "stagehost: %s\n", message.c_str());
    std::fflush(stderr);
    std::_Exit(exitCode);
}

} // namespace stagehost
