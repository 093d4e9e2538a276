#pragma once

#include <optional>

#include <QHash>
#include <QScriptValue>
#include <QVector>

class QObject;

/// The timers of one script, with those that came due while it was running. The timers are Qt's and come to the
/// owner's `timerEvent`; a number that Qt gives again to a new timer never stands for the old one. [all: script,
/// under the device's mutex; ClearAll also where the script thread has ended]
class ScriptTimers {
public:
    enum class Kind { Interval, TimeOut };

    /// @param owner gets the timer events; borrowed.
    explicit ScriptTimers(QObject& owner)
        : m_owner(owner) {}
    ScriptTimers(const ScriptTimers&) = delete;
    ScriptTimers& operator=(const ScriptTimers&) = delete;

    /// @param delayMs a negative one starts nothing.
    /// @return the timer's number; 0 when nothing was started, -1 when the value is no function.
    int Start(Kind kind, const QScriptValue& function, int delayMs);
    /// Ends a timer of that kind, also when it has come due already. Unknown numbers do nothing.
    void Clear(Kind kind, int id);
    void ClearAll();

    /// The function of a timer that fires; a time-out is over with it. Invalid when there is no such timer.
    QScriptValue Take(int id);

    /// A timer came due while the script was running. It counts once, however often it did.
    void Defer(int id);
    /// The number of the timer that has waited longest; nothing when none waits.
    std::optional<int> TakeDeferred();
    bool HasDeferred() const { return !m_deferred.isEmpty(); }

private:
    using Functions = QHash<int, QScriptValue>;

    Functions& Of(Kind kind) { return kind == Kind::Interval ? m_intervals : m_timeOuts; }

    QObject& m_owner;
    Functions m_intervals; ///< by their numbers
    Functions m_timeOuts;
    QVector<int> m_deferred;
};
