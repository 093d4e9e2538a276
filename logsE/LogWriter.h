#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "logsE.h"

namespace logsE {

/// One writer: appends whole lines to its file. Calls come one at a time, see LogWriters.
class LogWriter {
public:
    LogWriter(std::string programName, const LogsERecord& record);

    /// Writes one line for a source. @return 0, -2.
    std::int32_t Write(std::int32_t level, const std::string& source, const std::string& text);
    std::int32_t Flush();

    const std::string& ProgramName() const { return programName_; }
    std::int32_t WriterId() const { return writerId_; }
    std::int32_t Status() const { return failed_ ? LOGSE_NO_FILE : LOGSE_OK; }
    std::string StatusText() const;

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::string programName_;
    std::string path_;
    std::int32_t writerId_;
    std::unique_ptr<std::FILE, Closer> file_;
    bool failed_; ///< the file could not be opened, or the last write did not reach it
};

} // namespace logsE
