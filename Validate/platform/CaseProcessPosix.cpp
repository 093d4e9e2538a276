#include "CaseProcess.h"

#include <algorithm>
#include <array>
#include <cfenv>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr std::size_t kReportLimit = 1 << 16;

using Clock = std::chrono::steady_clock;

/// Reads until the other end is closed. @return false when the time is up.
bool ReadReport(int descriptor, Clock::time_point end, std::string& report) {
    std::array<char, 4096> buffer{};
    while (true) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd one{descriptor, POLLIN, 0};
        if (left <= 0 || poll(&one, 1, static_cast<int>(left)) == 0)
            return false;
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count == 0)
            return true;
        if (count > 0)
            report.append(buffer.data(), static_cast<std::size_t>(count));
        if (report.size() > 2 * kReportLimit)
            report.erase(0, report.size() - kReportLimit); // the end is what tells
    }
}

long CountEntries(const char* folder) {
    std::error_code error;
    return std::distance(std::filesystem::directory_iterator(folder, error), std::filesystem::directory_iterator());
}

/// How each signal is taken: by default, ignored, or by which handler.
std::string SignalActions() {
    std::ostringstream text;
    for (int signal = 1; signal < NSIG; ++signal) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_DFL)
            text << ' ' << signal << '=' << reinterpret_cast<void*>(action.sa_handler);
    }
    return text.str();
}

std::string BlockedSignals() {
    sigset_t blocked;
    sigprocmask(SIG_SETMASK, nullptr, &blocked);
    std::ostringstream text;
    for (int signal = 1; signal < NSIG; ++signal)
        if (sigismember(&blocked, signal) == 1)
            text << ' ' << signal;
    return text.str();
}

} // namespace

CaseEnd RunInProcess(const std::function<int(int)>& work, std::chrono::milliseconds limit) {
    CaseEnd end;
    std::array<int, 2> pipes{};
    if (pipe2(pipes.data(), O_CLOEXEC) != 0)
        return end;
    const pid_t child = fork();
    if (child == 0) {
        close(pipes[0]);
        setpgid(0, 0);                    // so that what the module starts ends with it
        prctl(PR_SET_PDEATHSIG, SIGKILL); // the user's Ctrl-C reaches this process's parent alone
        _exit(work(pipes[1]));
    }
    close(pipes[1]);
    setpgid(child, child);
    end.isInTime = child > 0 && ReadReport(pipes[0], Clock::now() + limit, end.report);
    if (child > 0)
        kill(-child, SIGKILL); // one that is over is not hurt any more
    int status = 0;
    if (child > 0 && waitpid(child, &status, 0) == child)
        end.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    close(pipes[0]);
    return end;
}

ProcessFigures MeasureProcess() {
    long resident = 0;
    std::ifstream("/proc/self/statm") >> resident >> resident;
    return {static_cast<int>(CountEntries("/proc/self/task")), static_cast<int>(CountEntries("/proc/self/fd")),
            resident * (sysconf(_SC_PAGESIZE) / 1024)};
}

std::string DescribeSurroundings() {
    std::ostringstream text;
    const mode_t mask = umask(0);
    umask(mask);
    text << "locale " << std::setlocale(LC_ALL, nullptr) << "\nfolder " << std::filesystem::current_path().string()
         << "\nfile mask " << mask << "\nblocked signals" << BlockedSignals() << "\nhandled signals" << SignalActions()
         << "\nrounding " << std::fegetround() << "\nenvironment";
    std::size_t hash = 0;
    for (char** entry = environ; *entry != nullptr; ++entry)
        hash = hash * 31 + std::hash<std::string>()(*entry);
    text << ' ' << hash << '\n';
    return text.str();
}
