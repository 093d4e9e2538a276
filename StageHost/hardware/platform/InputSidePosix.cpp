#include "InputSide.h"

#include <csignal>

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace stagehost {

bool HasInputOtherSide() {
    struct stat about {};
    if (fstat(STDIN_FILENO, &about) != 0)
        return false;
    return S_ISFIFO(about.st_mode) || S_ISSOCK(about.st_mode) || isatty(STDIN_FILENO) == 1;
}

/// A pipe that nobody has open for writing is hung up, and readable only while something waits in it.
bool IsInputLeft() {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, 0) == 1 && (input.revents & POLLIN) == 0;
}

void LetTerminalRefuse() {
    std::signal(SIGTTIN, SIG_IGN);
}

} // namespace stagehost
