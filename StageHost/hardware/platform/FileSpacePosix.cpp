#include "FileSpace.h"

#include <fcntl.h>

namespace stagehost {

bool FreeFileBefore(int descriptor, std::int64_t offset) {
    return fallocate(descriptor, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, 0, offset) == 0;
}

} // namespace stagehost
