#pragma once

#include <vector>

#include <QString>

#include "FunctionNames.h"

class QScriptEngine;
class QScriptValue;

/// One of the calls that have led to a fault.
struct FaultFrame {
    QString function; ///< empty for one without a name
    int line;         ///< of the file, from 1
    QString file{};   ///< empty where the script is one file
};

/// What went wrong in a script, with its place.
struct ScriptFault {
    QString what;                  ///< "ReferenceError: Can't find variable: level"
    int line = 0;                  ///< from 1; 0 when it is not known
    QString file;                  ///< empty where the script is one file
    int column = 0;                ///< from 1; 0 when the engine tells the line alone
    QString source;                ///< the line's text
    int mark = 0;                  ///< the place in it to be pointed at, from 0
    std::vector<FaultFrame> stack; ///< the innermost call first; empty where the engine has none
    QString note;                  ///< what to do about it; empty for nothing
};

/// Reads faults of one script after another, and keeps what it has learnt of a text as long as that stays.
/// [the engine's thread]
class FaultReader {
public:
    /// An exception that the engine has, or that an agent has seen thrown.
    /// @param text the script that the engine runs.
    ScriptFault Read(const QScriptEngine& engine, const QScriptValue& exception, const QString& text);

    /// A script that ScriptStopper has stopped: where it was.
    ScriptFault ReadStopped(const QScriptEngine& engine, const QString& text);

private:
    void Prepare(const QString& text);
    std::vector<FaultFrame> StackOf(const QScriptEngine& engine, int offset) const;
    void Point(ScriptFault& fault, int line, int offset) const;

    QString m_text;
    FunctionNames m_names{QString()};
};
