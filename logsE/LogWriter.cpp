#include "LogWriter.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <system_error>
#include <utility>

namespace logsE {

namespace {

/// The time of the machine's user, with its distance from UTC: "2026-11-22 19:30:00.450 +0100".
std::string Now() {
    using namespace std::chrono;
    const auto now = system_clock::now().time_since_epoch();
    const std::time_t seconds = static_cast<std::time_t>(duration_cast<std::chrono::seconds>(now).count());
    std::tm local{};
    localtime_r(&seconds, &local);
    std::array<char, 32> day{};
    std::array<char, 16> zone{};
    std::strftime(day.data(), day.size(), "%Y-%m-%d %H:%M:%S", &local);
    std::strftime(zone.data(), zone.size(), "%z", &local);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%s.%03d %s", day.data(),
                  static_cast<int>(duration_cast<milliseconds>(now).count() % 1000), zone.data());
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
    , m_failed(m_file == nullptr)
    , m_fold([this](std::int32_t level, const std::string& source, const std::string& text) {
        return WriteLine(level, source, text);
    }) {}

LogWriter::~LogWriter() {
    m_fold.TellAll();
}

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
    m_fold.Take(level, source, OneLine(text), LineFold::Clock::now());
    return Status();
}

bool LogWriter::WriteLine(std::int32_t level, const std::string& source, const std::string& text) {
    if (!m_file)
        return false;
    const std::string line = Now() + " [" + std::to_string(level) + "] " + OneLine(source) + ": " + text + "\n";
    const bool written = std::fwrite(line.data(), 1, line.size(), m_file.get()) == line.size();
    return Judge(written && std::fflush(m_file.get()) == 0) == LOGSE_OK;
}

std::int32_t LogWriter::Flush() {
    m_fold.TellAll();
    return m_file ? Judge(std::fflush(m_file.get()) == 0) : Status();
}

std::string LogWriter::StatusText() const {
    return (m_failed ? "cannot write " : "writing ") + m_path;
}

} // namespace logsE
