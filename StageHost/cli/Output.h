#pragma once

#include <chrono>

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include "CommandOutcome.h"
#include "Failure.h"

/// @file
/// Output of the program: UTF-8, results on standard output, everything else on standard error.   [host main]

namespace stagehost {

void Print(const QString& text);
void PrintLine(const QString& line);
void PrintProblem(const QString& line); ///< to standard error
void PrintJson(const QJsonObject& object);
void PrintJsonLine(const QJsonObject& object); ///< on one line

/// Has something done before and behind everything that is printed; null for nothing.
void SetAroundOutput(void (*before)(), void (*behind)());

/// Gives descriptors that the process was started without to nobody else: what is opened first would get them, and then
/// be written into. Before anything is opened.
void HoldStandardChannels();

/// The exit code of the process: that given, or 2 for 0 when a result could not be written.
int FinalExitCode(int exitCode);

/// What is said when characters of a text were replaced on the way to the module.
QString LostCharactersNote();

/// Reports a failure: the text on standard error, and on standard output as JSON if that was asked for.
/// @return the exit code, for the caller to pass on.
int Fail(bool json, int exitCode, const QString& text);

/// The same for a failure in a script, with its place.
int Fail(bool json, const Failure& failure);

/// Where something went wrong, to standard error: lines that belong to the one before.
void PrintPlace(const QStringList& place);

/// Adds where in a script something went wrong to what programs get of it.
void AddPlace(QJsonObject& object, const QStringList& place);

/// The exit code that an outcome stands for.
int ExitCodeOf(const CommandOutcome& outcome);

/// What went wrong, in words; empty for an outcome that is well.
QString FailureText(const CommandOutcome& outcome, const QString& command, std::chrono::milliseconds limit);

/// A code of the host or the module, in words.
QString HostCodeLine(KXPCode code);

/// An outcome as JSON.
QJsonObject ToJson(const CommandOutcome& outcome);

/// Rows as aligned columns, two blanks apart; the last column is not padded.
QString Table(const QVector<QStringList>& rows, const QString& indent);

/// A text on one line, cut where it is longer than a line is wide.
QString OneLine(const QString& text);

} // namespace stagehost
