#include "Terminal.h"

#include <unistd.h>

namespace stagehost {

bool IsTerminal(StandardChannel channel) {
    return isatty(static_cast<int>(channel)) == 1;
}

} // namespace stagehost
