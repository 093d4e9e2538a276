#pragma once

#include <QString>

class QScriptValue;

/// @file
/// What a device tells its user, through the variable "Error" and the dialogs. No such text stands anywhere
/// else. Pure functions, callable on any thread but where a script's value is an argument.

/// The texts that are whole.
namespace DeviceText {
constexpr const char* kUnreadableFile = "This file cannot be loaded.";
constexpr const char* kNoFunctionName = "Script function name missing.";
constexpr const char* kUnknownCommand = "Command not found";
constexpr const char* kCommandTimeOut = "Command Timeout.";
constexpr const char* kNoCommandThread = "The system has no thread left for commands.";
constexpr const char* kNoMemory = "Not enough memory.";
constexpr const char* kAnalysed = "Evaluation Ok";
constexpr const char* kSetupTooLarge =
    "The setup is larger than a project can keep. A script may have about 48 million characters.";
} // namespace DeviceText

/// A failure of the script: "Script: " and the text.
QString ScriptFailure(const QString& text);
/// "Script: Uncaught exception at line 3, text".
QString UncaughtAtLine(int line, const QString& exception);
/// "name function is not defined".
QString NoSuchFunction(const QString& name);
/// "name: message", of a member that is an error.
QString FailedMember(const QString& name, const QString& message);
/// "A timer with a delay of -5 ms starts nothing.", for the log.
QString NoTimerFor(int delayMs);
/// "Uncaught Exception - line:3, message: text", for the log.
QString UncaughtForLog(const QString& line, const QString& message);

/// The message of a script's error object.   [the engine's thread]
QString MessageOf(const QScriptValue& error);
