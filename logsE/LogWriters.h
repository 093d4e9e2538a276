#pragma once

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

#include "LogWriter.h"

namespace logsE {

/// The writers of the process by their handles. One lock covers the table and every call into a writer, so that lines
/// of several writers to one file never mix. A thread tells of folded lines in time; it lives as long as there are
/// writers.
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
        if (found == m_writers.end())
            return LOGSE_BAD_HANDLE;
        const std::int32_t result = call(*found->second);
        WatchOver(*found->second);
        return result;
    }

private:
    ~LogWriters();
    void WatchOver(const LogWriter& writer);
    std::thread TakeTeller();
    void TellOfFolds(const bool& ends);

    mutable std::mutex m_lock; ///< guards all below, and the writers
    std::condition_variable m_changed;
    std::thread m_teller;         ///< from the first line that is folded to the end of the last writer
    bool m_watches = false;       ///< the teller has something to look at
    std::shared_ptr<bool> m_ends; ///< the teller of now has to end; it keeps the flag
    std::map<void*, std::unique_ptr<LogWriter>> m_writers;
};

} // namespace logsE
