#include "ChildProcess.h"

#include <csignal>

#include <sys/prctl.h>
#include <unistd.h>

namespace stagehost {

void BelongToParentAlone() {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
}

} // namespace stagehost
