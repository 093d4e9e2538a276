#include "ProcessKeeper.h"

#include <csignal>
#include <cstdlib>
#include <ctime>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/// Everything here runs in the child of a process that has threads: the calls are those that signal-safety(7) lists,
/// and nothing allocates.

namespace stagehost {

namespace {

constexpr int kAsk = SIGTERM;
constexpr int kForce = SIGUSR1;
constexpr int kOrphaned = SIGHUP; // the process that has started the program has gone
constexpr int kWaitedFor[] = {kAsk, kForce, kOrphaned, SIGCHLD};

constexpr timespec kTick = {0, 10'000'000}; // 10 ms
constexpr int kTicksToEnd = 50;             // for what is asked to end, before it is forced to

/// Signals each child of this process: the program, and what has lost its parents since, in any group and session.
void SignalChildren(int signal) {
    char text[4096]; // more than that are there at the next look
    const int file = open("/proc/thread-self/children", O_RDONLY | O_CLOEXEC);
    const ssize_t count = file < 0 ? 0 : read(file, text, sizeof text);
    close(file);
    pid_t child = 0;
    for (ssize_t place = 0; place < count; ++place) { // "17 23 ", the last number perhaps cut
        if (text[place] >= '0' && text[place] <= '9') {
            child = child * 10 + (text[place] - '0');
            continue;
        }
        if (child > 0)
            kill(child, signal);
        child = 0;
    }
}

class Keeper {
public:
    explicit Keeper(pid_t program)
        : m_program(program) {}

    /// Looks first and waits then: the signal of a program that has ended already went with the handlers of before
    /// (POSIX, sigaction: what is ignored by default is discarded).
    [[noreturn]] void Keep(const sigset_t& signals) {
        while (Reap()) {
            if (m_ends && --m_ticks < 0)
                SignalAll(SIGKILL);
            Heed(m_ends ? sigtimedwait(&signals, nullptr, &kTick) : sigwaitinfo(&signals, nullptr));
        }
        Leave();
    }

private:
    void Heed(int signal) {
        if (signal == kAsk)
            SignalAll(SIGTERM);
        else if (signal == kOrphaned)
            EndRest();
        else if (signal == kForce) {
            m_ends = true;
            m_ticks = 0;
        }
    }

    void EndRest() {
        m_ends = true;
        m_ticks = kTicksToEnd;
        SignalAll(SIGTERM);
    }

    /// The group is the program's as long as nobody has waited for that.
    void SignalAll(int signal) const {
        if (!m_isOver)
            kill(-m_program, signal);
        SignalChildren(signal);
    }

    /// @return whether a child is left.
    bool Reap() {
        int status = 0;
        pid_t child = 0;
        while ((child = waitpid(-1, &status, WNOHANG)) > 0) {
            if (child != m_program)
                continue;
            m_isOver = true;
            m_status = status;
            if (!m_ends)
                EndRest();
        }
        return child == 0;
    }

    [[noreturn]] void Leave() const {
        if (WIFSIGNALED(m_status)) {
            const rlimit none{};
            setrlimit(RLIMIT_CORE, &none); // the program has left its own
            const int signal = WTERMSIG(m_status);
            sigset_t only{};
            sigemptyset(&only);
            sigaddset(&only, signal);
            ::signal(signal, SIG_DFL);
            kill(getpid(), signal);
            sigprocmask(SIG_UNBLOCK, &only, nullptr);
        }
        _exit(WEXITSTATUS(m_status));
    }

    const pid_t m_program;
    bool m_isOver = false; ///< the program has ended
    int m_status = 0;
    bool m_ends = false; ///< whatever is left ends
    int m_ticks = 0;     ///< until it is forced to
};

} // namespace

void GoOnUnderKeeper(std::int64_t parent) {
    sigset_t signals{};
    sigset_t before{};
    sigemptyset(&signals);
    for (const int signal : kWaitedFor)
        sigaddset(&signals, signal);
    sigprocmask(SIG_BLOCK, &signals, &before);
    setpgid(0, 0);
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    prctl(PR_SET_PDEATHSIG, kOrphaned);
    const pid_t keeper = getpid();
    const pid_t program = _Fork(); // fork itself may wait for a lock that a thread of the parent holds
    if (program == 0) {
        setpgid(0, 0);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        sigprocmask(SIG_SETMASK, &before, nullptr);
        if (getppid() != keeper)
            _exit(EXIT_FAILURE);
        return;
    }
    if (program < 0)
        _exit(EXIT_FAILURE);
    for (const int signal : kWaitedFor)
        ::signal(signal, SIG_DFL);
    setpgid(program, program);
    prctl(PR_SET_NAME, "stagehost-keeps");
    close_range(0, ~0U, 0); // the program's end of each pipe shall be the only one
    if (getppid() != parent)
        kill(keeper, kOrphaned);
    Keeper(program).Keep(signals);
}

void EndKept(std::int64_t keeper, KeptEnd how) {
    if (keeper > 1) // 0 and -1 mean processes of others
        kill(static_cast<pid_t>(keeper), how == KeptEnd::Forced ? kForce : kAsk);
}

} // namespace stagehost
