#pragma once

#include <cstdint>

class MThread;

/// The body of a thread, for owners that do not derive from MThread.
class IThreadHandler {
public:
    /// Does the work of `thread` until thread->StopRequested().
    /// @return the thread's exit value.   [thread: the started one]
    virtual std::uint32_t ThreadRun(MThread* thread) = 0;

protected:
    virtual ~IThreadHandler() = default;
};
