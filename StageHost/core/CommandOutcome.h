#pragma once

#include <string>

#include "KXPTypes.h"

namespace stagehost {

/// How the result of a command begins that has failed: what scripts say when they can throw no more.
inline constexpr const char* kFailureMark = "error: ";

/// How one command went. All texts are Latin-1.
struct CommandOutcome {
    enum class Kind {
        Done,         ///< the device has finished the command
        ScriptFailed, ///< it has reported an error
        Refused,      ///< ExecuteCommand gave another code than 0
        NoAnswer,     ///< the limit passed
        Interrupted   ///< the user wants the program to end
    };

    Kind kind = Kind::NoAnswer;
    KXPCode code = KXP_OK; ///< what ExecuteCommand gave
    std::string result;    ///< the out-parameter "Result", empty without one
    std::string status;    ///< the variable "Status" at the end
    std::string error;     ///< what the command itself has failed with
    bool answered = false; ///< the device has written the result
    double milliseconds = 0;
};

} // namespace stagehost
