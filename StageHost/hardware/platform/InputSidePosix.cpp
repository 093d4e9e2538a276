#include "InputSide.h"

#include <csignal>

#include <sys/stat.h>
#include <unistd.h>

namespace stagehost {

bool HasInputOtherSide() {
    struct stat about {};
    if (fstat(STDIN_FILENO, &about) != 0)
        return false;
    return S_ISFIFO(about.st_mode) || S_ISSOCK(about.st_mode) || isatty(STDIN_FILENO) == 1;
}

void LetTerminalRefuse() {
    std::signal(SIGTTIN, SIG_IGN);
}

} // namespace stagehost
