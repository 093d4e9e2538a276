#pragma once

#include <cstdint>

/// Somebody who is called on each pass of an MThreadTimer.
class IThreadTimerHandler {
public:
    /// One pass. nowMs is the MillisecondClock() at the pass's start, the same for all handlers of the pass. What takes
    /// long here delays all other handlers.   [thread: the timer's]
    virtual void OnTimer(std::uint32_t nowMs) = 0;

protected:
    virtual ~IThreadTimerHandler() = default;
};
