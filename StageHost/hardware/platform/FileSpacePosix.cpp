#include "FileSpace.h"

#include <csignal>

#include <fcntl.h>

namespace stagehost {

bool FreeFileBefore(int descriptor, std::int64_t offset) {
    return fallocate(descriptor, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, 0, offset) == 0;
}

void FailWhereFilesMayNotGrow() {
    std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace stagehost
