#include "LogWriters.h"

#include <system_error>
#include <utility>

namespace logsE {

LogWriters& LogWriters::Instance() {
    static LogWriters writers;
    return writers;
}

void* LogWriters::Add(std::string programName, const LogsERecord& record) {
    auto writer = std::make_unique<LogWriter>(std::move(programName), record);
    void* const handle = writer.get();
    const std::lock_guard<std::mutex> hold(m_lock);
    m_writers.emplace(handle, std::move(writer));
    return handle;
}

bool LogWriters::Remove(void* handle) {
    std::thread ended;
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        if (m_writers.erase(handle) != 1)
            return false;
        if (m_writers.empty())
            ended = TakeTeller();
    }
    m_changed.notify_all();
    if (ended.joinable())
        ended.join(); // the library may be unloaded when its last writer has gone
    return true;
}

/// A process without room for a thread has its counts when the next line comes.
void LogWriters::WatchOver(const LogWriter& writer) {
    if (m_watches || !writer.IsWaiting())
        return;
    m_watches = true;
    m_changed.notify_all();
    if (m_teller.joinable())
        return;
    try {
        m_ends = std::make_shared<bool>(false);
        m_teller = std::thread([this, ends = m_ends] { TellOfFolds(*ends); });
    } catch (const std::system_error&) {
        m_watches = false;
    }
}

/// Has the teller end, and leaves it to be joined without the lock.
std::thread LogWriters::TakeTeller() {
    if (m_ends)
        *m_ends = true;
    m_watches = false;
    return std::move(m_teller);
}

LogWriters::~LogWriters() {
    std::thread ended;
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        ended = TakeTeller();
    }
    m_changed.notify_all();
    if (ended.joinable())
        ended.join();
}

/// @param ends under the lock.
void LogWriters::TellOfFolds(const bool& ends) {
    std::unique_lock<std::mutex> hold(m_lock);
    while (!ends) {
        m_changed.wait(hold, [&] { return ends || m_watches; });
        m_changed.wait_for(hold, LineFold::kPeriod, [&] { return ends; });
        if (ends)
            return;
        m_watches = false;
        for (const auto& [handle, writer] : m_writers) {
            writer->TellDue();
            m_watches = m_watches || writer->IsWaiting();
        }
    }
}

std::int32_t LogWriters::Count() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return static_cast<std::int32_t>(m_writers.size());
}

} // namespace logsE
