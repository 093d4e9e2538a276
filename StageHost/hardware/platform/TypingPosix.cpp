#include "Typing.h"

#include <unistd.h>

namespace stagehost {

bool IsTyped() {
    return isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1;
}

} // namespace stagehost
