#pragma once

#include <map>
#include <memory>
#include <mutex>

#include "LogWriter.h"

namespace logsE {

/// The writers of the process by their handles. One lock covers the table and every call into a writer, so that lines
/// of several writers to one file never mix.
class LogWriters {
public:
    static LogWriters& Instance();

    void* Add(std::string programName, const LogsERecord& record);
    bool Remove(void* handle);
    std::int32_t Count() const;

    /// Calls something with the writer of a handle, under the lock. @return its result, -1 for an unknown handle.
    template <typename Call>
    std::int32_t With(void* handle, Call call) {
        const std::lock_guard<std::mutex> hold(m_lock);
        const auto found = m_writers.find(handle);
        return found == m_writers.end() ? LOGSE_BAD_HANDLE : call(*found->second);
    }

private:
    mutable std::mutex m_lock; ///< guards m_writers and the writers
    std::map<void*, std::unique_ptr<LogWriter>> m_writers;
};

} // namespace logsE
