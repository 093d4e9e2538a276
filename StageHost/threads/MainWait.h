#pragma once

#include <chrono>
#include <functional>

namespace stagehost {

/// Waiting on the host's main thread without stopping its events: timers, posted events and, later, windows go on.
///
/// One object stands while the application object stands. What the condition reads is changed under a lock of its own;
/// whoever changes it calls Wake afterwards.
class MainWait {
public:
    /// @param limit 0 looks at the condition once.
    /// @return whether the condition held before the limit passed.   [host main]
    static bool Until(const std::function<bool()>& condition, std::chrono::milliseconds limit);

    /// The same, and over as well when the user wants the program
    /// to end, see Interrupt. For what a script keeps waiting.
    static bool UntilInterrupted(const std::function<bool()>& condition, std::chrono::milliseconds limit);

    /// Waits until the user wants the program to end, see Interrupt. No timer runs for it: each would be set anew for
    /// every piece that a relay passes on, and an idle processor is long in setting timers.   [host main]
    static void ForInterrupt();

    /// Makes a wait that is under way look at its condition again.   [any]
    static void Wake();

    MainWait();
    ~MainWait();
    MainWait(const MainWait&) = delete;
    MainWait& operator=(const MainWait&) = delete;
};

} // namespace stagehost
