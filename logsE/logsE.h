#pragma once

#include <cstddef>
#include <cstdint>

/// @file
/// The logging library: lines with time and level into a file. It is found by its name at run time, and so are its
/// entry points; several modules of a process share it. All texts are 8-bit and NUL-terminated; null is the empty text.
/// All entry points may come on any thread. A handle that is not in use gives -1.

/// What a user of the library tells about its writer: a record of 1048 bytes.
struct LogsERecord {
    std::uint32_t size;         ///< 1048
    char path[1024];            ///< log file, appended to; made when missing
    std::uint32_t writerId;     ///< number of the writer, handed back by logsEGetWriterID
    std::uint32_t firstOption;  ///< level bits as the host gave them; the writer writes every level
    std::uint32_t secondOption; ///< kept, not used
    std::uint32_t reserved;     ///< 0
    std::uint32_t unused;       ///< behind the last field that is used, part of the size
};

static_assert(sizeof(LogsERecord) == 1048, "the record is a format of 1048 bytes");
static_assert(offsetof(LogsERecord, path) == 4 && offsetof(LogsERecord, writerId) == 1028 &&
                  offsetof(LogsERecord, firstOption) == 1032 && offsetof(LogsERecord, secondOption) == 1036 &&
                  offsetof(LogsERecord, reserved) == 1040,
              "the fields stand at fixed places");

/// Results of the entry points below 0.
enum LogsEResult : std::int32_t {
    LOGSE_OK = 0,
    LOGSE_BAD_HANDLE = -1,
    LOGSE_NO_FILE = -2,     ///< the log file cannot be written: the writer is silent
    LOGSE_BAD_ARGUMENT = -3 ///< a null buffer, or one without room for a text
};

#define LOGSE_EXPORT __attribute__((visibility("default")))

extern "C" {

/// Makes a writer. A file that cannot be written gives a silent writer, not a failure.
/// @return the writer's handle, to be ended with logsEFinalizeLibrary; null for a null record, another size than 1048
///         or a path without an end.
LOGSE_EXPORT void* logsEInitializeLibrary(const char* programName, const LogsERecord* record);

/// Writes out what is left and ends the writer. @return 0, -1.
LOGSE_EXPORT std::int32_t logsEFinalizeLibrary(void* handle);

/// Writes one line: local time with its distance from UTC, level in square brackets, program name, text. Line ends
/// inside the text are written as blanks. A line that comes again is counted and not written: "... 412 times more"
/// follows within a second or two.
/// @return 0, -1, -2.
LOGSE_EXPORT std::int32_t logsEWriteMessage(void* handle, std::int32_t level, const char* text);

/// Makes sure that all lines are in the file. @return 0, -1, -2.
LOGSE_EXPORT std::int32_t logsEFlush(void* handle);

/// The count of writers in the process. At 0 the library may be unloaded.
LOGSE_EXPORT std::int32_t logsEGetWriterCounter();

/// logsEWriteMessage with the name of a source in place of the program's. @return 0, -1, -2.
LOGSE_EXPORT std::int32_t logsEWriteMessage2(void* handle, std::int32_t level, const char* source, const char* text);

/// Copies the writer's program name, cut to the buffer. @return 0, -1, -3.
LOGSE_EXPORT std::int32_t logsEGetWriterName(void* handle, char* buffer, std::uint32_t size);

/// @return the writer id of the record, -1 for a handle that is not in use.
LOGSE_EXPORT std::int32_t logsEGetWriterID(void* handle);

/// @return 0 writing, -1, -2.
LOGSE_EXPORT std::int32_t logsEGetEngineStatus(void* handle);

/// Copies the status in words, cut to the buffer. @return as logsEGetEngineStatus, or -3.
LOGSE_EXPORT std::int32_t logsEGetEngineStatusEx(void* handle, char* buffer, std::uint32_t size);
}
