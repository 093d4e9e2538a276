#include "LogFixture.h"

#include <fstream>

bool IsMapped(const std::string& path) {
    std::ifstream maps("/proc/self/maps");
    std::string line;
    while (std::getline(maps, line))
        if (line.size() >= path.size() && line.compare(line.size() - path.size(), path.size(), path) == 0)
            return true;
    return false;
}

void LogFixture::SetUp() {
    ASSERT_NE(folder.Module(), nullptr);
    ASSERT_FALSE(IsLogOn(false));
}

void LogFixture::TearDown() {
    if (m_recorder.IsOpen())
        Recorded().otherWriters = 0;
    CloseLog();
    m_recorder.Close();
}

void LogFixture::GivenHostLog(std::uint32_t levelBits, bool enabled) {
    host.givesLog = true;
    host.logEnabled = enabled ? 1 : 0;
    host.logWriter = 17;
    host.logPath = folder.PathOf("host.log");
    host.logLevelBits = levelBits;
    host.logOption = 23;
}

LogRecorder& LogFixture::Recorded() {
    if (!m_recorder.IsOpen() && !m_recorder.Open(folder.PathOf("logsE.so")))
        ADD_FAILURE() << m_recorder.GetError();
    return *static_cast<LogRecorder*>(m_recorder.Find("Recorder"));
}
