#include "LogWriters.h"

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
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_writers.erase(handle) == 1;
}

std::int32_t LogWriters::Count() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return static_cast<std::int32_t>(m_writers.size());
}

} // namespace logsE
