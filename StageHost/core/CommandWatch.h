#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "ExecContext.h"
#include "HostValue.h"

namespace stagehost {

/// How often a verdict is asked for that ripens with time alone.
inline constexpr std::chrono::milliseconds kLook(50);

/// Sees how one command goes, from what a host can see of it.
///
/// A command for which the device began the context is over when the context has ended. For the others nobody ends
/// it: their end is the device's variable `Status` coming back to "Ready" (index 0) after it had left it. A device
/// holds a command that failed, for some ten seconds and without saying so; an error that stands when the device is
/// ready again is therefore an outcome at once, whatever the context says later.
///
/// Timers, events and other commands write the same variable `Error`. What fails a command is the error that stands as
/// the device comes back from it; and a command that has written its result has not failed, whatever stands there. An
/// error that a timer writes between the end of the command's function and the device's return is taken for the
/// command's: a host cannot see where the function ended.
///
/// Made before the command is sent. Device threads feed it, one thread asks it; its state has a lock of its own.
class CommandWatch {
public:
    /// @param status, error the device's variables; either may be null.
    /// @param wake called, on any thread and with no lock held, when a look at the watch may be worth it.
    CommandWatch(const std::shared_ptr<HostValue>& status, const std::shared_ptr<HostValue>& error,
                 std::function<void()> wake);
    ~CommandWatch();
    CommandWatch(const CommandWatch&) = delete;
    CommandWatch& operator=(const CommandWatch&) = delete;

    /// The context to send with the command; lives as long as the watch.
    ExecContext* Context() { return m_context; }

    /// Looks at the value that takes the command's result as well; before the command is sent.   [host main]
    /// @param result lives until StopLooking, or as long as the watch.
    void LookAtResult(HostValue& result);

    /// Whether the command has written its result.   [any]
    bool IsAnswered() const;

    /// What the command itself has failed with since the watch was made, up to the end of the context; empty when it
    /// has not.   [any]
    std::string OwnError() const;

    enum class Verdict {
        Running, ///< not over yet
        Over,    ///< over: the result is in place
        Failed,  ///< an error is known, but not whether the device has let go of the command
        Unseen   ///< accepted, and this device shows no end of such a command
    };

    /// @param now the time at which the question is asked.   [one thread, after the command was accepted]
    Verdict Judge(std::chrono::steady_clock::time_point now);

    /// Ends the looking at the device's variables; the context stays.   [host main]
    void StopLooking();

    /// How long an error must stand while the device is ready, where it may not be the last word: a command with a
    /// context may still end properly, one that has not begun may not be the one that failed.
    static constexpr std::chrono::milliseconds kGrace{250};

private:
    struct Seen;

    std::shared_ptr<Seen> m_seen; ///< shared with the observers, which may run a last time after their removal
    ExecContext* m_context;
    Observation m_statusObservation;
    Observation m_errorObservation;
    Observation m_resultObservation;
};

} // namespace stagehost
