#pragma once

#include <optional>

#include <QScriptValue>

#include "ScriptRecords.h"

/// @file
/// The object `Info` in which a script describes what it publishes. Runs on the thread of the value's engine.

struct ScanResult;

/// The object that is the published value's own member "Info"; invalid when there is none.
QScriptValue FindInfo(const QScriptValue& published);

/// `Info.Options.RemoveDefaultCommandsAndVariables`; nothing when it is not a boolean.
std::optional<bool> ReadInfoOptions(const QScriptValue& info);

/// Adds types, ranges, items and labels to what the scan has found. Names that it has not found are dropped, and so is
/// what does not fit: a range that is no number, a command named like a built-in one.
void ApplyInfo(const QScriptValue& info, ScanResult& result);
