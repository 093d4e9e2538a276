#include "ChildProcess.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>

namespace stagehost {

void BelongToParentAlone() {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
}

} // namespace stagehost
