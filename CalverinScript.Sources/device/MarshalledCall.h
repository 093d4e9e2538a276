#pragma once

#include <cstddef>

/// The calls that cross to the script thread and are waited for, in the order of their table.
enum class MarshalledCall {
    LoadScriptCommand,
    EvaluateScriptCommand,
    EvaluateScript,
    ExecuteScriptFunction,
    ExecuteCallBack,
    ExecuteStopFunction,
    ClearTimers
};

constexpr std::size_t kMarshalledCallCount = 7;
