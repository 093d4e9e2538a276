#include "EndRequests.h"

#include <cerrno>
#include <csignal>

#include <sys/eventfd.h>

namespace stagehost {

std::array<int, 3> EndRequests() {
    return {SIGINT, SIGTERM, SIGHUP};
}

/// Shells without job control have what they begin in the background ignore Ctrl-C, and their scripts end it by that
/// all the same.
bool HearEndRequest(int request, void (*hear)(int)) {
    if (std::signal(request, hear) != SIG_IGN || request != SIGHUP)
        return true;
    std::signal(request, SIG_IGN);
    return false;
}

void LetEndRequestEnd(int request) {
    std::signal(request, SIG_DFL);
}

int MakeBell() {
    return eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
}

void RingBell(int bell) {
    const int before = errno; // of whoever was interrupted
    eventfd_write(bell, 1);
    errno = before;
}

} // namespace stagehost
