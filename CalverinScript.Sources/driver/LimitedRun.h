#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <utility>

#include <QString>

class QScriptEngine;

/// @file
/// Scripts that are only looked at run where somebody waits for them: on the host's main thread, and a script may never come back.

/// How long an analysis may take when nothing else is said.
inline constexpr std::chrono::milliseconds kAnalysisLimit(10000);

/// Runs work that enters scripts of an engine on a thread of its own, while the caller waits and serves nothing else.
class LimitedRun {
public:
    enum class Outcome {
        InTime,
        Late,     ///< the work has been ended after the limit
        NoThread, ///< the system gave no thread, and the work has not run
        NoMemory  ///< memory has run out, and the work has not come to its end
    };

    /// @param engine one that no other thread uses meanwhile. It may be used again afterwards, on the caller's thread.
    /// @param text all that the engine has ever evaluated and is about to, so that it can be told where that was stopped; null
    /// when that does not matter.
    LimitedRun(QScriptEngine& engine, std::chrono::milliseconds limit, QString text = QString())
        : m_engine(engine)
        , m_limit(limit)
        , m_text(std::move(text)) {}
    LimitedRun(const LimitedRun&) = delete;
    LimitedRun& operator=(const LimitedRun&) = delete;

    /// Runs the work and waits until it is over. After the limit its scripts are aborted, so that it comes to its end soon; only one
    /// call inside the engine that computes by itself cannot be ended, and is waited for.
    /// @return whether the work was over in time.   [any]
    Outcome Run(const std::function<void()>& work);

    /// Runs a request on the thread that waits in Run, where the host may be called. Left out once the limit has passed.
    /// [the work's thread]
    void OnCallersThread(const std::function<void()>& request);

private:
    struct State;

    void Wait(State& state) const;
    static void Serve(State& state, std::unique_lock<std::mutex>& guard);
    static void Abort(State& state);

    QScriptEngine& m_engine;
    const std::chrono::milliseconds m_limit;
    const QString m_text;
    State* m_state = nullptr; ///< while Run runs
};

/// What to tell of a script that was not looked at to its end; null for one that was.
QString AnalysisFailure(LimitedRun::Outcome outcome, std::chrono::milliseconds limit);
