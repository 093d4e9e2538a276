#pragma once

#include <atomic>

/// What the threads of a device tell one another about its start and stop. Each flag has one kind of writer.
struct RunState {
    std::atomic<bool> startPending{false};    ///< set by Start, read once when the script has been evaluated
    std::atomic<bool> stopPending{false};     ///< set by Stop, read once by the stop function
    std::atomic<bool> hasStopFunction{false}; ///< the script has one; written on the script thread
    std::atomic<bool> stopRequested{false};   ///< the script thread asks the tick to finish a stop
    std::atomic<bool> threadStopDone{true};   ///< false while a stop waits for the debugger
    std::atomic<bool> threadLeft{false};      ///< set by the script thread when it touches the device no more
};
