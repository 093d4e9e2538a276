#pragma once

class QScriptEngine;
class QString;

/// Stops the script that an engine is running, however it tries to go on.
///
/// A script that catches nothing is stopped by an error that is thrown where it is: then the engine notes the calls
/// that have led there. An error that is caught would let the script run on, and keep the engine from looking at events
/// for a long time; so a script with a "catch" or a "finally" is aborted instead, which leaves the line alone, as is
/// one that goes on behind the error.
///
/// The engine has to be inside a script and to be processing events.   [the engine's thread]
class ScriptStopper {
public:
    /// A text that the engine is about to evaluate. Without any, scripts are aborted.
    void LookAt(const QString& text);

    void Stop(QScriptEngine& engine);

    /// Whether a script has been stopped since the beginning.
    bool HasStopped() const { return m_hasStopped; }

private:
    bool m_hasText = false;
    bool m_catches = false; ///< stays, as functions of earlier texts may
    bool m_hasStopped = false;
};
