#pragma once

/// @file
/// What the lines of the module's log look like, for a host that shows or reads them. DEVICE is a device's name.
///
///     kxpCalverinScript [DEVICE] TEXT     what its script traces and prints, at the level that the script gives, and
///                                         what the device does with its commands, at level 7
///     CalverinScript_ [DEVICE] TEXT       what has failed, at level 5
///     CalverinScript_ [DEVICE]     MORE   more about that, a line each, right behind it among the lines of the device
///
/// What has failed is an exception that the script has not caught, told with its message, or a script that had to be
/// stopped when its device was released:
///
///     CalverinScript_ [desk] Uncaught Exception - line:12, message: Can't find variable: level
///     CalverinScript_ [desk]     /drivers/lights.js:12:17: ReferenceError: Can't find variable: level
///     CalverinScript_ [desk]     | var half = level / 2;
///     CalverinScript_ [desk]     |            ^
///     CalverinScript_ [desk]     at Fade (/drivers/lights.js:12)
///     CalverinScript_ [desk]     at the top level (/drivers/lights.js:40)
///     CalverinScript_ [desk]     note: what to write instead
///
/// The first line of the details is FILE:LINE:COLUMN or FILE:LINE, ": " and the message; those that begin with "at "
/// are the calls that led there, the innermost first, each with FILE:LINE in brackets at its end. All but the first may
/// be missing. FILE is the script's as it was loaded, or the name of a piece of a script that was put together (see
/// ScriptPlace.h).

/// How a line of a device begins, up to its name, which "] " ends.
constexpr const char* KXP_LOG_DEVICE = "kxpCalverinScript [";
constexpr const char* KXP_LOG_FAILURE = "CalverinScript_ [";

/// How the text of a failure begins.
constexpr const char* KXP_LOG_UNCAUGHT = "Uncaught Exception ";
constexpr const char* KXP_LOG_STOPPED = "Script Stopped";

/// How the text of a line with more about a failure begins.
constexpr const char* KXP_LOG_DETAIL = "    ";

/// Stands for FILE where the script is that of a setup or of a command, and comes from no file.
constexpr const char* KXP_LOG_NO_FILE = "<script>";

/// What the lines about the commands of a device begin with; " [" and a word, "post", "execute" or "executed", follow.
constexpr const char* KXP_LOG_COMMANDS[] = {"LoadScriptFromFile", "LoadScriptFromText", "ExecuteScriptFunction",
                                            "ExecuteScriptFunctionWithParams", "ExecuteCallBack"};
