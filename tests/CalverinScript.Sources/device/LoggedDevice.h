#pragma once

#include "DeviceFixture.h"
#include "ModuleFolder.h"

/// One line of the log.
struct LogLine {
    int level;
    std::string text;
    bool operator==(const LogLine& other) const { return level == other.level && text == other.text; }
};

std::ostream& operator<<(std::ostream& out, const LogLine& line);

/// A device whose lines go to a file of the real logging library.
class LoggedDevice : public DeviceFixture {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Opens the log anew with an empty file.
    void GivenAnEmptyLog();
    /// The lines so far.
    std::vector<LogLine> Log() const;
    /// Waits until there are that many lines. @return them, fewer past the deadline.
    std::vector<LogLine> LogOf(std::size_t count) const;

private:
    ModuleFolder m_logFolder;
};
