#include "LogWriter.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

namespace logsE {

namespace {

/// Days since 1970 into year, month and day: the "civil_from_days" algorithm of Howard Hinnant's "chrono-Compatible
/// Low-Level Date Algorithms". Unlike the C library's it has no hidden buffer that other threads may write to.
struct CivilDate {
    explicit CivilDate(long days) {
        const long shifted = days + 719468;
        const long era = shifted / 146097;
        const long dayOfEra = shifted - era * 146097;
        const long yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
        const long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
        const long monthFromMarch = (5 * dayOfYear + 2) / 153;
        day = dayOfYear - (153 * monthFromMarch + 2) / 5 + 1;
        month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
        year = yearOfEra + era * 400 + (month <= 2 ? 1 : 0);
    }

    long year, month, day;
};

std::string Now() {
    using namespace std::chrono;
    const long long now = duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    const long seconds = static_cast<long>(now / 1000);
    const CivilDate date(seconds / 86400);
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%04ld-%02ld-%02ld %02ld:%02ld:%02ld.%03d", date.year, date.month, date.day,
                  seconds / 3600 % 24, seconds / 60 % 60, seconds % 60, static_cast<int>(now % 1000));
    return text.data();
}

std::string OneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char character) { return character == '\n' || character == '\r'; }, ' ');
    return text;
}

} // namespace

LogWriter::LogWriter(std::string programName, const LogsERecord& record)
    : m_programName(std::move(programName))
    , m_path(record.path)
    , m_writerId(static_cast<std::int32_t>(record.writerId))
    , m_file(std::fopen(m_path.c_str(), "a"))
    , m_failed(m_file == nullptr) {}

/// Nobody asks a log how it is: that lines are lost is said where people look.
std::int32_t LogWriter::Judge(bool written) {
    const int reason = errno;
    m_failed = !written;
    if (m_failed && !std::exchange(m_told, true))
        std::fprintf(stderr, "the log cannot be written: %s: %s\n", m_path.c_str(),
                     std::error_code(reason, std::generic_category()).message().c_str());
    return Status();
}

std::int32_t LogWriter::Write(std::int32_t level, const std::string& source, const std::string& text) {
    if (!m_file)
        return LOGSE_NO_FILE;
    const std::string line = Now() + " [" + std::to_string(level) + "] " + OneLine(source + ": " + text) + "\n";
    const bool written = std::fwrite(line.data(), 1, line.size(), m_file.get()) == line.size();
    return written ? Flush() : Judge(false);
}

std::int32_t LogWriter::Flush() {
    return m_file ? Judge(std::fflush(m_file.get()) == 0) : Status();
}

std::string LogWriter::StatusText() const {
    return (m_failed ? "cannot write " : "writing ") + m_path;
}

} // namespace logsE
