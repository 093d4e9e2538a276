#include "CaseProcess.h"

#include <algorithm>
#include <array>
#include <cfenv>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <iostream>
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

/// From now on standard output is a file without a name.
void KeepOutput() {
    if (FILE* const file = std::tmpfile()) {
        dup2(fileno(file), STDOUT_FILENO);
        std::fclose(file);
    }
}

std::string DescribeStream(int descriptor) {
    struct stat state {};
    const std::string name = "stream " + std::to_string(descriptor);
    if (fstat(descriptor, &state) != 0)
        return name + " closed";
    return name + " file " + std::to_string(state.st_dev) + ":" + std::to_string(state.st_ino);
}

/// How much standard output has, and how it begins.
std::string DescribeOutput() {
    constexpr std::size_t kMost = 60;
    std::cout.flush();
    std::fflush(stdout);
    std::string begin(kMost, '\0');
    const ssize_t count = pread(STDOUT_FILENO, begin.data(), begin.size(), 0);
    begin.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    const off_t size = lseek(STDOUT_FILENO, 0, SEEK_END);
    return "standard output has " + std::to_string(std::max<off_t>(size, 0)) + " bytes: \"" + begin + "\"";
}

} // namespace

CaseEnd RunInProcess(const std::function<int(int)>& work, std::chrono::milliseconds limit) {
    CaseEnd end;
    end.limit = limit;
    std::array<int, 2> pipes{};
    if (pipe2(pipes.data(), O_CLOEXEC) != 0)
        return end;
    std::cout.flush();
    std::fflush(stdout); // else the copy has it too
    const pid_t child = fork();
    if (child == 0) {
        close(pipes[0]);
        setpgid(0, 0);                    // so that what the module starts ends with it
        prctl(PR_SET_PDEATHSIG, SIGKILL); // the user's Ctrl-C reaches this process's parent alone
        KeepOutput();
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
    return {static_cast<int>(CountEntries("/proc/self/task")), static_cast<int>(CountEntries("/proc/self/fd"))};
}

std::vector<std::string> DescribeSurroundings() {
    const mode_t mask = umask(0);
    umask(mask);
    std::vector<std::string> lines = {std::string("locale ") + std::setlocale(LC_ALL, nullptr),
                                      "folder " + std::filesystem::current_path().string(),
                                      "file mask " + std::to_string(mask),
                                      "blocked signals" + BlockedSignals(),
                                      "handled signals" + SignalActions(),
                                      "rounding " + std::to_string(std::fegetround()),
                                      DescribeStream(STDIN_FILENO),
                                      DescribeStream(STDOUT_FILENO),
                                      DescribeStream(STDERR_FILENO),
                                      DescribeOutput()};
    for (char** entry = environ; *entry != nullptr; ++entry)
        lines.push_back(std::string("environment ") + *entry);
    return lines;
}
