#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <vector>

#include <QScriptEngine>
#include <QScriptValue>
#include <QTimer>

namespace stagehost {

/// What has failed in a script, in the form of the module's log (LogLines.h).
struct ScriptFailure {
    QString text;      ///< "fake.js:12: ReferenceError: Can't find variable: level"
    QStringList place; ///< the line of the script, and the calls that led there
};

/// Why the text is no script, with its place. @return nothing when it is one.   [any]
std::optional<ScriptFailure> SyntaxFailure(const QString& text, const QString& file);

/// The one way into a counterpart's script. What comes while the script runs waits until it has come back; what does
/// not come back within three seconds is broken off and told as a failure. [host main]
class ScriptDoor {
public:
    /// @param tell takes each failure that nobody else gets.
    explicit ScriptDoor(std::function<void(const ScriptFailure& failure)> tell);
    ScriptDoor(const ScriptDoor&) = delete;
    ScriptDoor& operator=(const ScriptDoor&) = delete;

    QScriptEngine& Engine() { return m_engine; }

    /// Whether the script runs just now, and has let an event in.
    bool IsInside() const { return m_isInside; }

    /// Runs a script. @param file stands in failures. @return its failure; nothing when it went well.
    std::optional<ScriptFailure> Run(const QString& text, const QString& file);

    /// Does something that calls into the script: now, or behind what runs.
    void Enter(std::function<void()> work);

    /// What the outermost function of the script is called in a failure when it has no name of its own.
    using Called = std::function<QString()>;

    /// Calls a function of the script; from inside Enter, or from a native function. A failure is told.
    QScriptValue Call(const QScriptValue& function, const QScriptValueList& arguments, const Called& called);
    /// The same with the failure for the caller.
    QScriptValue Call(QScriptValue function, const QScriptValueList& arguments, const Called& called,
                      std::optional<ScriptFailure>& failure);

    /// A function of the script that stands somewhere by a name.
    struct Kept {
        QString name; ///< "lamp.dim"
        QString text; ///< as the engine tells it
    };
    /// @param kept is asked for all of them when a failure has to name one that has no name of its own.
    void NameBy(std::function<std::vector<Kept>()> kept) { m_kept = std::move(kept); }

private:
    /// One call of a backtrace, which begins with the innermost.
    struct Frame {
        QString function;
        QString file;
        int line;
    };

    void BreakOff();
    std::optional<ScriptFailure> TakeFailure(const Called& called);
    ScriptFailure FailureAt(const QString& message, const QStringList& backtrace, int line, const Called& called) const;
    QString CallName(const std::vector<Frame>& frames, std::size_t place, const Called& called) const;
    QString KeptName(int line) const;
    QString SourceLine(int line) const;

    const std::function<void(const ScriptFailure& failure)> m_tell;
    QScriptEngine m_engine;
    std::function<std::vector<Kept>()> m_kept;
    QTimer m_guard; ///< runs while the script does
    QString m_file;
    QStringList m_source;
    std::deque<std::function<void()>> m_waiting;
    bool m_isInside = false;
    bool m_catches = false;     ///< whether it may catch what is thrown into it
    bool m_isBrokenOff = false; ///< and the failure of that has not been taken
};

} // namespace stagehost
