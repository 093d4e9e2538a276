#pragma once

#include <mutex>

#include <QScriptEngine>
#include <QScriptValue>

#include "MLockedList.h"
#include "ScriptRecords.h"

/// Gives a list other content in one step.   [any]
template <typename T, typename Values>
void ReplaceAll(MLockedList<T>& list, const Values& values) {
    const std::lock_guard<MLockedList<T>> guard(list);
    list.Clear();
    for (const auto& value : values)
        list.Add(value);
}

/// One script with what was found in it. A device has two that never mix: what its engine runs, and what an analysis
/// sees while the device need not run.
///
/// The lists have locks of their own: the script thread rebuilds them, host and command threads read them. Everything
/// else belongs to the thread that runs script, under the device's mutex.
struct ScriptSet {
    QScriptEngine* engine = nullptr; ///< not owned; of an analysis valid for its time only
    QScriptValue global;             ///< what the last evaluation returned; calls into the script work on it
    QString scriptText;
    QString scriptFileName;
    MLockedList<MScriptVariable> variables;
    MLockedList<MScriptVariable> monitors;
    MLockedList<MScriptCommand> functions;
    MLockedList<MScriptSetting> settings;
};
