#pragma once

#include <atomic>
#include <cstdint>

class QScriptEngine;

/// The turns of a native loop whose length a script chooses: `new Buffer(new Array(1e9))` must not outlive its device.
///
/// The loop looks at the stop flag of its engine now and then. Once that is set, the loop ends, and the script that called is
/// aborted when the native function returns: it cannot catch that.   [script]
class StoppableLoop {
public:
    /// @param engine the one whose script chose the length; null for none, whose loops never stop.
    explicit StoppableLoop(QScriptEngine* engine)
        : m_engine(engine) {}

    /// Whether another turn may follow. Costs a count in most turns.
    bool GoesOn() { return (++m_turns % kTurnsBetweenLooks) != 0 || !IsStopped(); }

    /// Names the flag of an engine; borrowed, and must be there as long as scripts run on the engine.   [the engine's thread]
    static void SetStopFlag(QScriptEngine& engine, const std::atomic<bool>* stop);

private:
    static constexpr std::uint32_t kTurnsBetweenLooks = 1024;

    bool IsStopped();

    QScriptEngine* const m_engine;
    std::uint32_t m_turns = 0;
};
