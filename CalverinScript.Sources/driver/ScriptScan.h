#pragma once

#include <optional>

#include <QScriptValue>
#include <QSet>

#include "ScriptRecords.h"

class AccessorPool;
class EnumHelpers;
class IData;

/// @file
/// Reading back what a script publishes from the value of its evaluation. Runs on the thread of the value's engine.

/// What a scan asks of the device for which it is made.
class IScanHost {
public:
    /// A variable of the host by its full name; null when there is none.
    virtual IData* FindHostVariable(const QString& name) = 0;
    /// A variable of the device as the host has made it; null when there is none.
    virtual IData* FindDeviceVariable(const QString& name) = 0;
    /// Whether the host allows an object of that name.
    virtual bool IsValidName(const QString& name) = 0;

protected:
    ~IScanHost() = default;
};

/// One scan. All pointers are borrowed for the call and may be null.
struct ScanRequest {
    QScriptValue published;                     ///< the value of the evaluation
    bool stopMode = true;                       ///< an analysis: `Info` is applied and nothing is bound
    bool removeDefaults = false;                ///< unless the script says itself whether the default variables go
    const QSet<QString>* hiddenNames = nullptr; ///< members that were there before the script
    IScanHost* host = nullptr;                  ///< null: no variable is known, every name is allowed
    AccessorPool* accessors = nullptr;          ///< binds members to the host's values outside stop mode
    EnumHelpers* enumHelpers = nullptr;         ///< gives `Device` its two functions outside stop mode
};

/// What it found, in the order of the script.
struct ScanResult {
    std::optional<bool> removeDefaults; ///< the script's own option; read in stop mode alone
    ScriptVariables variables;          ///< new variables of the device, each name once
    ScriptVariables monitors;           ///< variables that are there already, each once
    ScriptCommands functions;
    ScriptSettings settings;
};

/// Reads what a value publishes. A value that is no object publishes nothing; what cannot be read is left out. May run
/// functions of the script (getters); exceptions that they leave are cleared.
ScanResult ScanGlobal(const ScanRequest& request);

/// The command that a script function becomes: a parameter "Result" with direction out, then the function's own with
/// direction in, as its source text names them.
MScriptCommand CommandFromFunction(const QString& name, const QString& sourceText);

/// A variable as the host has it: name, number, type and value.
MScriptVariable VariableFromData(IData& data);
