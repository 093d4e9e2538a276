#include "LoggedDevice.h"

#include <chrono>
#include <fstream>
#include <sstream>

#include "Log.h"

std::ostream& operator<<(std::ostream& out, const LogLine& line) {
    return out << "[" << line.level << "] " << line.text;
}

void LoggedDevice::SetUp() {
    m_logFolder.Copy(REAL_LOGS, "logsE.so");
    GivenAnEmptyLog();
    DeviceFixture::SetUp();
}

void LoggedDevice::TearDown() {
    DeviceFixture::TearDown();
    CloseLog();
}

void LoggedDevice::GivenAnEmptyLog() {
    CloseLog();
    m_logFolder.Write("lines.log", "");
    plain::Host logHost;
    logHost.givesLog = true;
    logHost.logEnabled = 1;
    logHost.logPath = m_logFolder.PathOf("lines.log");
    ASSERT_TRUE(OpenLog(m_logFolder.Module(), "P", logHost.Root()));
}

/// A line of the file is "date time [level] program: text".
std::vector<LogLine> LoggedDevice::Log() const {
    std::vector<LogLine> lines;
    std::istringstream file(m_logFolder.Read("lines.log"));
    std::string line;
    while (std::getline(file, line)) {
        const std::size_t level = line.find(" [");
        const std::size_t text = line.find("] P: ");
        if (level == std::string::npos || text == std::string::npos)
            ADD_FAILURE() << line;
        else
            lines.push_back({std::atoi(line.c_str() + level + 2), line.substr(text + 5)});
    }
    return lines;
}

std::vector<LogLine> LoggedDevice::LogOf(std::size_t count) const {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kDeadlineMs);
    std::vector<LogLine> lines = Log();
    while (lines.size() < count && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
        lines = Log();
    }
    return lines;
}
