#pragma once

namespace stagehost {

/// Exit codes of the program; people's scripts rely on them.
enum ExitCode : int {
    kExitOk = 0,
    kExitScriptFailed = 1, ///< the script failed, a command was refused, or a step went otherwise than expected
    kExitBadUse = 2,       ///< bad arguments, an unreadable or bad file
    kExitNoAnswer = 3,     ///< no answer within the time limit, or before the user interrupted the wait
    kExitNoModule = 4      ///< the module could not be loaded
};

} // namespace stagehost
