#pragma once

#include <atomic>
#include <cstdint>

/// What the host has told about a track that drives this device. A device under a track refuses other work, so every
/// road of commands asks IsTracking() first.
///
/// Each field is written by the host thread that gives the track commands and read by any thread. A reader may see one
/// field of a change before the next; the questions asked here are about one field each.
class MTimerailManager {
public:
    virtual void TrackStop(std::int32_t argument);    ///< tracking off, suspended off, state 0
    virtual void TrackRun(std::int32_t argument);     ///< tracking on, state 1
    virtual void TrackStart(std::int32_t argument);   ///< tracking on, suspended off, state 2
    virtual void TrackSuspend(std::int32_t argument); ///< tracking off, suspended on, state 0
    virtual void TrackEnd(std::int32_t argument);     ///< tracking off, suspended off, state 0
    virtual ~MTimerailManager() = default;

    /// Back to idle, with no last argument.
    virtual void Reset();

    /// 0 idle, 1 and 2 running.
    virtual std::int32_t GetState() const { return m_state; }
    virtual bool IsTracking() const { return m_tracking; }
    virtual bool IsSuspended() const { return m_suspended; }

    /// Keeps the argument and runs one of the five operations above: command 0 is TrackStop, 4 is TrackEnd. Any other
    /// command changes nothing but the kept argument.
    /// @return the state before the call.
    std::int32_t ChangeTrackState(std::int32_t command, std::int32_t argument);

    /// The argument of the last ChangeTrackState.
    std::int32_t GetLastArgument() const { return m_lastArgument; }

private:
    std::atomic<std::int32_t> m_state{0};
    std::atomic<std::int32_t> m_lastArgument{0};
    std::atomic<bool> m_tracking{false};
    std::atomic<bool> m_suspended{false};
};
