#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "LineFold.h"
#include "logsE.h"

namespace logsE {

/// One writer: appends whole lines to its file. Calls come one at a time, see LogWriters.
class LogWriter {
public:
    LogWriter(std::string programName, const LogsERecord& record);

    /// Writes what is left.
    ~LogWriter();
    LogWriter(const LogWriter&) = delete;
    LogWriter& operator=(const LogWriter&) = delete;

    /// Writes one line for a source. The first that does not reach the file is told on standard error. @return 0, -2.
    std::int32_t Write(std::int32_t level, const std::string& source, const std::string& text);
    std::int32_t Flush();

    /// Writes how often lines came again that were written a while ago.
    void TellDue() { m_fold.TellDue(LineFold::Clock::now()); }
    /// Whether there will be something for TellDue.
    bool IsWaiting() const { return m_fold.IsWaiting(); }

    const std::string& ProgramName() const { return m_programName; }
    std::int32_t WriterId() const { return m_writerId; }
    std::int32_t Status() const { return m_failed ? LOGSE_NO_FILE : LOGSE_OK; }
    std::string StatusText() const;

private:
    std::int32_t Judge(bool written);
    bool WriteLine(std::int32_t level, const std::string& source, const std::string& text);

    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::string m_programName;
    std::string m_path;
    std::int32_t m_writerId;
    std::unique_ptr<std::FILE, Closer> m_file;
    bool m_failed; ///< the file could not be opened, or the last write did not reach it
    bool m_told = false;
    LineFold m_fold;
};

} // namespace logsE
