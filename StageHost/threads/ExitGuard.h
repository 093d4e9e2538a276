#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace stagehost {

/// Guards a call into the module on the main thread that may never come back: when the limit passes, it says so on
/// standard error and ends the process with the given code, without running anything else of the process.
///
/// The limit is a time of the computer, whatever the show's is. It stands around one call and is disarmed by its
/// destructor. Where the system has no thread left for it, nothing is guarded.
class ExitGuard {
public:
    /// @param message one line, printed when the guard strikes.   [host main]
    ExitGuard(std::chrono::milliseconds limit, int exitCode, std::string message);
    ~ExitGuard();
    ExitGuard(const ExitGuard&) = delete;
    ExitGuard& operator=(const ExitGuard&) = delete;

private:
    void Watch(std::chrono::milliseconds limit, int exitCode, const std::string& message);

    std::mutex m_lock; ///< guards m_disarmed
    bool m_disarmed = false;
    std::condition_variable m_disarm;
    std::thread m_watcher; ///< none when the system had none
};

/// Ends the process at once: standard output is written out, nothing else of the process runs.
[[noreturn]] void LeaveAtOnce(int exitCode, const std::string& message);

} // namespace stagehost
