#pragma once

#include <cstdint>

/// Numbers of the commands that every device has. User commands have the numbers between.
enum BuiltInCommand : std::int32_t {
    kLoadFromFile = 0,
    kLoadFromText = 1,
    kExecuteFunction = 2,
    kExecuteFunctionWithParams = 3,
    kFirstUserCommand = 4,
    kScriptCallback = 10000 ///< the device's own, for asynchronous results
};

/// Places of the parameters inside a command of the queue.
enum CommandParam : std::int32_t {
    kContextParam = 0,
    kTextParam = 1,
    kAsyncContextParam = 1,
    kResultParam = 2,
    kFirstArgumentParam = 3
};

/// Watchdog time of every command, in milliseconds.
constexpr std::uint32_t kCommandTimeoutMs = 5000;
/// What a carried pointer reports as its size.
constexpr std::uint32_t kPointerParamSize = 4;
/// How many texts reach a script function.
constexpr int kArgumentCount = 8;
