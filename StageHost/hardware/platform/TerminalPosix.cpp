#include "Terminal.h"

#include <unistd.h>

namespace stagehost {

bool IsTerminal(Channel channel) {
    return isatty(static_cast<int>(channel)) == 1;
}

} // namespace stagehost
