#pragma once

#include <QStringList>

class QScriptValue;

/// What the rooms of a device tell of its script. The device passes it on to its user and to the dialogs.
class IScriptReports {
public:
    /// A failure; an empty text clears the one before, a null one does nothing. In stop mode only the dialogs
    /// hear of it.   [any]
    virtual void ReportError(const QString& text, bool stopMode) = 0;
    /// The line of the failure that was reported before it.   [any]
    virtual void ReportLine(int line) = 0;
    /// The script that is shown has changed.   [any]
    virtual void ReportScriptFile(const QString& fileName) = 0;
    virtual void ReportScriptText(const QString& text) = 0;
    /// An exception that no code of the script has caught.   [script]
    virtual void ReportException(const QScriptValue& exception) = 0;
    /// An exception that a function has left behind which nobody called by name.   [script]
    virtual void ReportLeftBehind(const QScriptValue& exception) = 0;

protected:
    ~IScriptReports() = default;
};

/// What a running script needs of its device beside that: the two calls that listeners of the device see as well.
class IProgramOwner : public IScriptReports {
public:
    /// Evaluates a text in place of the script that runs. @return whether it could be evaluated.   [script]
    virtual bool EvaluateProgram(const QString& text) = 0;
    /// Calls the script's stop function, if it has one.   [script]
    virtual void StopProgram() = 0;
    /// The script has been stopped where it was, since its device ends.
    /// @param lines what LinesOf tells of the place.   [script]
    virtual void ReportStopped(const QStringList& lines) = 0;
    /// Opens the debugger's window.   [script]
    virtual void ShowDebugger() = 0;

protected:
    ~IProgramOwner() = default;
};
