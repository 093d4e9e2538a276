#pragma once

#include "CheckerCodes.h"

namespace stagehost {

/// Exit codes of the program; people's scripts rely on them. Those of the checker are among them, since
/// they are passed on.
enum ExitCode : int {
    kExitOk = KXP_CHECKER_OK,
    kExitScriptFailed = KXP_CHECKER_SCRIPT_FAILED,
    kExitBadUse = KXP_CHECKER_BAD_USE,
    kExitNoAnswer = KXP_CHECKER_NO_ANSWER,
    kExitNoModule = 4
};

struct ExitCodeRow {
    ExitCode code;
    const char* meaning; ///< as the help and docs/stagehost.md tell it
};

inline constexpr ExitCodeRow kExitCodes[] = {
    {kExitOk, "all went well"},
    {kExitScriptFailed, "the script failed, a command was refused, or a step went otherwise than expected"},
    {kExitBadUse, "bad use: wrong arguments, or a file that is none, is bad, or cannot be read or written"},
    {kExitNoAnswer, "no answer within --timeout, or before Ctrl-C"},
    {kExitNoModule,
     "the module could not be loaded, or makes no usable device; the system has no room left for the program"},
};

} // namespace stagehost
