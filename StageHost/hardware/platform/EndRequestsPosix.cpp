#include "EndRequests.h"

#include <csignal>

namespace stagehost {

std::array<int, 3> EndRequests() {
    return {SIGINT, SIGTERM, SIGHUP};
}

bool HearEndRequest(int request, void (*hear)(int)) {
    if (std::signal(request, hear) != SIG_IGN)
        return true;
    std::signal(request, SIG_IGN);
    return false;
}

void LetEndRequestEnd(int request) {
    std::signal(request, SIG_DFL);
}

} // namespace stagehost
