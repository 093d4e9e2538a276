#pragma once

#include <chrono>

#include <QStringList>

#include "LogLine.h"
#include "Options.h"

namespace stagehost {

/// Shows lines of the log on standard error: what scripts trace, and with --log everything.
///
///     19:30:00.450  desk  INFO    the door is open
///
/// More than kMostInASecond lines are counted instead of shown, so that a script that traces as fast as it can keeps
/// neither the screen nor the program.   [host main]
class LogScreen {
public:
    using Clock = std::chrono::steady_clock;

    explicit LogScreen(const Options& options)
        : m_options(options) {}

    void SetDevices(const QStringList& devices);

    /// Whether a line that has come now need not even be read. It counts as left out.
    bool LeavesOut(const QByteArray& line, Clock::time_point now);
    void Show(const LogLine& line, Clock::time_point now);
    /// Tells of what was left out, once the second is over.
    void Tell(Clock::time_point now);

    static constexpr int kMostInASecond = 1000;

private:
    bool Wants(const LogLine& line) const;

    const Options& m_options;
    int m_widest = 0; ///< of the names of devices
    Clock::time_point m_second;
    int m_shown = 0;         ///< in this second
    long long m_leftOut = 0; ///< since it was told
};

} // namespace stagehost
