#include "ProcessGroup.h"

#include <csignal>

#include <unistd.h>

namespace stagehost {

void BeginProcessGroup() {
    setpgid(0, 0);
}

void EndProcessGroup(std::int64_t first, GroupEnd how) {
    if (first > 1) // 0 and -1 mean groups of others
        kill(static_cast<pid_t>(-first), how == GroupEnd::Forced ? SIGKILL : SIGTERM);
}

} // namespace stagehost
