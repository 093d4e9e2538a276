#include "PseudoTerminal.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <termios.h>
#include <unistd.h>

namespace stagehost {

namespace {

/// The settings of our end are those of the port, and they stay as long as it is open.
void PassAllBytes(int ours) {
    termios line{};
    tcgetattr(ours, &line);
    cfmakeraw(&line);
    tcsetattr(ours, TCSANOW, &line);
}

/// @return -1, with the reason of the last call.
int GiveUp(int descriptor, std::string& problem) {
    problem = std::strerror(errno);
    if (descriptor >= 0)
        close(descriptor);
    return -1;
}

} // namespace

int OpenPseudoTerminal(std::string& name, std::string& problem) {
    const int ours = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    char path[64] = {};
    if (ours < 0 || grantpt(ours) != 0 || unlockpt(ours) != 0 || ptsname_r(ours, path, sizeof path) != 0)
        return GiveUp(ours, problem);
    name = path;
    PassAllBytes(ours);
    // Until a port was open once, nobody seems to have left it.
    const int theirs = open(path, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (theirs < 0)
        return GiveUp(ours, problem);
    close(theirs);
    return ours;
}

bool IsOpenByOthers(int ours) {
    pollfd line{ours, POLLIN, 0};
    return poll(&line, 1, 0) == 0 || (line.revents & POLLHUP) == 0;
}

void DropUnread(int ours) {
    tcflush(ours, TCOFLUSH);
}

int WatchOpens(const std::string& name, std::string& problem) {
    const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (watch < 0 || inotify_add_watch(watch, name.c_str(), IN_OPEN | IN_CLOSE) < 0)
        return GiveUp(watch, problem);
    return watch;
}

void ForgetOpens(int watch) {
    char events[4096];
    while (read(watch, events, sizeof events) > 0) {
    }
}

} // namespace stagehost
