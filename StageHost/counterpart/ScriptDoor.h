#pragma once

#include <deque>
#include <functional>
#include <optional>

#include <QScriptEngine>
#include <QScriptValue>
#include <QTimer>

namespace stagehost {

/// What has failed in a script, in the form of the module's log (LogLines.h).
struct ScriptFailure {
    QString text;      ///< "fake.js:12: ReferenceError: Can't find variable: level"
    QStringList place; ///< the line of the script, and the calls that led there
};

/// The one way into a counterpart's script. What comes while the script runs waits until it has come back; what does
/// not come back within three seconds is broken off and told as a failure. [host main]
class ScriptDoor {
public:
    /// @param tell takes each failure that nobody else gets.
    explicit ScriptDoor(std::function<void(const ScriptFailure& failure)> tell);
    ScriptDoor(const ScriptDoor&) = delete;
    ScriptDoor& operator=(const ScriptDoor&) = delete;

    QScriptEngine& Engine() { return m_engine; }

    /// Runs a script. @param file stands in failures. @return its failure; nothing when it went well.
    std::optional<ScriptFailure> Run(const QString& text, const QString& file);

    /// Does something that calls into the script: now, or behind what runs.
    void Enter(std::function<void()> work);

    /// Calls a function of the script; from inside Enter, or from a native function. A failure is told.
    QScriptValue Call(QScriptValue function, const QScriptValueList& arguments);
    /// The same with the failure for the caller.
    QScriptValue Call(QScriptValue function, const QScriptValueList& arguments, std::optional<ScriptFailure>& failure);

private:
    void BreakOff();
    std::optional<ScriptFailure> TakeFailure();
    ScriptFailure FailureAt(const QString& message, const QStringList& backtrace, int line) const;
    QString SourceLine(int line) const;

    const std::function<void(const ScriptFailure& failure)> m_tell;
    QScriptEngine m_engine;
    QTimer m_guard; ///< runs while the script does
    QString m_file;
    QStringList m_source;
    std::deque<std::function<void()>> m_waiting;
    bool m_isInside = false;
    bool m_catches = false;     ///< whether it may catch what is thrown into it
    bool m_isBrokenOff = false; ///< and the failure of that has not been taken
};

} // namespace stagehost
