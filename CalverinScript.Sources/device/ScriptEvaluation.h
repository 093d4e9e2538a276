#pragma once

#include <optional>

#include <QString>

#include "ScriptScan.h"
#include "ScriptSet.h"

class IScriptReports;

/// @file
/// What a device's engine and an analysis do alike: read a script, evaluate it, see whether that failed, and
/// look at what it publishes.

/// Why an evaluation gave no script.
struct EvaluationFailure {
    QString text;
    std::optional<int> line; ///< of an uncaught exception
};

/// Reads a script's file into a set and shows both; a file that cannot be read shows an empty text and is
/// told as an error.
/// @param fileName in the host's text; null cannot be read. @return whether it could be read.   [the set's thread]
bool ReadScriptFile(ScriptSet& set, const char* fileName, IScriptReports& reports);

/// Evaluates a text in a context of its own. @return its completion value.   [the engine's thread]
QScriptValue EvaluateText(QScriptEngine& engine, const QString& text);

/// Forgets the exception of a failed evaluation, whose text may run script. @return nothing when it did not
/// fail.   [the engine's thread]
std::optional<EvaluationFailure> TakeFailure(QScriptEngine& engine, const QScriptValue& value);
void Report(const EvaluationFailure& failure, bool stopMode, IScriptReports& reports);

/// Scans the value of the set's last evaluation.
/// @param request all but what the set says.   [the engine's thread]
ScanResult ScanPublished(const ScriptSet& set, ScanRequest request);
/// What a scan has found takes the place of what the one before has found.   [any]
void Publish(ScriptSet& set, const ScanResult& found);
