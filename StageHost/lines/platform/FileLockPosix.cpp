#include "FileLock.h"

#include <cerrno>

#include <sys/file.h>

namespace stagehost {

bool KeepForOneWriter(int descriptor) {
    return flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

} // namespace stagehost
