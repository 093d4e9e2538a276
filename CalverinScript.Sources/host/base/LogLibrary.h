#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "DynamicLibrary.h"

/// What the logging library gets when it is initialised: a format of that library.
struct LogRecord {
    std::uint32_t size = 1048;
    char path[1024] = {};
    std::uint32_t writerId = 0;
    std::uint32_t option1 = 0;
    std::uint32_t option2 = 0;
    std::uint32_t reserved[2] = {};
};

static_assert(sizeof(LogRecord) == 1048, "the record is a format of the logging library");
static_assert(offsetof(LogRecord, writerId) == 1028 && offsetof(LogRecord, option2) == 1036, "fields at stated places");

/// The shared logging library, found by name, and its ten entries. The first four must all be there, or the library
/// counts as absent. Not locked: its owner serialises Load, Unload and the calls.
class LogLibrary {
public:
    static constexpr std::int32_t kAbsent = -7;       ///< no library, or an obligatory entry is missing
    static constexpr std::int32_t kEntryMissing = -5; ///< the call needs an optional entry that is missing

    /// Loads the library that lies beside the given file, or else the one that the system finds by name.
    /// @return whether it is there with its four obligatory entries.
    bool Load(const std::string& besideFile);
    /// Unloads the library and clears all entries when it says that no writer is open in the process any more.
    void UnloadWhenUnused();
    bool IsLoaded() const { return m_entries[kInitialize] != nullptr; }

    /// A writer handle; null when the library is absent or refused.
    void* Initialize(const char* programName, const LogRecord& record) const;
    std::int32_t Finalize(void* handle) const;
    std::int32_t WriteMessage(void* handle, std::int32_t level, const char* text) const;
    std::int32_t Flush(void* handle) const;
    /// How many writers are open in the process.
    std::int32_t GetWriterCounter() const;

private:
    enum Entry {
        kInitialize,
        kFinalize,
        kWriteMessage,
        kFlush,
        kGetWriterCounter,
        kWriteMessage2,
        kGetWriterName,
        kGetWriterID,
        kGetEngineStatus,
        kGetEngineStatusEx,
        kEntryCount
    };
    static const char* const kEntryNames[kEntryCount];
    static constexpr int kObligatory = 4;

    template <typename Function>
    Function As(Entry entry) const {
        return reinterpret_cast<Function>(m_entries[entry]);
    }
    std::int32_t Missing() const { return IsLoaded() ? kEntryMissing : kAbsent; }

    DynamicLibrary m_library;
    void* m_entries[kEntryCount] = {};
};
