#pragma once

#include <cstdint>

class IMInterface;

/// @file
/// The module's log. The writer is a logging library that all modules of a process share; it is found by name at run
/// time, and without it the log is silently off. Switches stand in section "LOGSE" of the module's configuration file
/// and in what the host says of its log. OpenLog and CloseLog belong to the host's main thread; everything else may
/// come on any thread.

/// Size of one log line in bytes, its NUL included; what is longer is cut.
constexpr int kLogLineSize = 1024;

/// Reads the switches and, when they say so, loads the library and opens the log. An open log is closed first.
/// @param moduleHandle an address inside the module; decides
/// where the configuration file and the library are looked for.
/// @param programName  name under which the lines are written.
/// @param host         the host's root object, borrowed for the call.
/// @return false when moduleHandle or host is null or when the log stays off.   [host main]
bool OpenLog(const void* moduleHandle, const char* programName, IMInterface* host);

/// Closes the log; the last user of the library unloads it. Does nothing when the log is off.   [host main]
void CloseLog();

/// Whether the log is on and, with commandsOnly, whether "LogFileLogCommands" is set as well.   [any]
bool IsLogOn(bool commandsOnly);

/// Whether lines of a level are wanted: level 0 always, 1 from level bits 0x10, 2 from 0x80, 3 from 0xF0; all others,
/// and everything while the log is off, are not.   [any]
bool IsLevelOn(int level);

/// The writer handle of the open log, null when it is off. Valid until CloseLog.   [any]
void* LogHandle();

/// Says in the log that memory ran out, and in what; the line itself may be lost too.
/// @param device its name in the host's text. @param work in English, such as "a command".   [any]
void LogWantOfMemory(const char* device, const char* work);

/// Formats a line (printf rules, cut at kLogLineSize) and writes it at a level.
/// @param handle from LogHandle; null does nothing.
/// @return what the library answered; -7 when the log is off.   [any]
std::int32_t WriteLog(void* handle, int level, const char* format, ...) __attribute__((format(printf, 3, 4)));
