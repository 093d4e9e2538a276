#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace logsE {

/// Folds a line that comes again and again, so that a loop that writes it fills no disk: the first is written at once,
/// those that follow are counted, and the count is written behind it as "... 412 times more": when another line comes,
/// when a second has passed, and at the end.
///
/// Lines of one source about one thing, the name in square brackets at their beginning, are a stream; other streams may
/// come between. Within each nothing changes its place. Indented lines, which continue the one before, are never
/// folded.
///
/// Not synchronised.
class LineFold {
public:
    using Clock = std::chrono::steady_clock;
    using Write = std::function<bool(std::int32_t level, const std::string& source, const std::string& text)>;

    /// @param write writes a line. @return whether it could.
    explicit LineFold(Write write)
        : m_write(std::move(write)) {}

    /// Takes a line. @return false when something that had to be written could not be.
    bool Take(std::int32_t level, const std::string& source, const std::string& text, Clock::time_point now);

    /// Writes the counts that have waited long enough.
    bool TellDue(Clock::time_point now);
    /// Writes all counts.
    bool TellAll();

    /// Whether a count waits to be written.
    bool IsWaiting() const;

    static constexpr std::chrono::seconds kPeriod{1};

private:
    struct Last {
        std::int32_t level = 0;
        std::string text;
        std::uint64_t again = 0;   ///< how often it came since something was written
        Clock::time_point written; ///< when the line or a count of it was written
    };
    using Streams = std::map<std::string, Last>; ///< by source and name

    bool Tell(const std::string& stream, Last& last, Clock::time_point now);

    const Write m_write;
    Streams m_streams;
};

} // namespace logsE
