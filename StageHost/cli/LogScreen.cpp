#include "LogScreen.h"

#include <algorithm>
#include <iterator>

#include <QTime>

#include "Colors.h"
#include "LogLines.h"
#include "Output.h"

namespace stagehost {

namespace {

/// Commands that run scripts while somebody looks on.
constexpr int kAlarmLevel = 4; // "alarm"
constexpr const char* kShowTraces[] = {"run", "watch", "exec", "send"};

constexpr int kLevelWidth = 7;

QString LevelName(const LogLine& line) {
    if (line.kind == LogLine::Kind::Commands)
        return QStringLiteral("COMMAND");
    const auto* found = std::find_if(std::begin(kLogLevels), std::end(kLogLevels),
                                     [&](const LogLevel& level) { return level.number == line.level; });
    return found == std::end(kLogLevels) ? QString::number(line.level) : QString(QLatin1String(found->name)).toUpper();
}

Ink InkOf(const LogLine& line) {
    return WeightOfLevel(line.level) >= WeightOfLevel(kAlarmLevel) ? Ink::Warning : Ink::Faint;
}

} // namespace

void LogScreen::SetDevices(const QStringList& devices) {
    for (const QString& device : devices)
        m_widest = std::max(m_widest, device.size());
}

bool LogScreen::LeavesOut(const QByteArray& line, Clock::time_point now) {
    Tell(now);
    if (m_shown < kMostInASecond || line.contains(KXP_LOG_FAILURE))
        return false;
    ++m_leftOut;
    return true;
}

bool LogScreen::Wants(const LogLine& line) const {
    if (m_options.log)
        return m_options.logDevices.isEmpty() || m_options.logDevices.contains(line.device);
    const bool isShown = std::any_of(std::begin(kShowTraces), std::end(kShowTraces), [this](const char* command) {
        return m_options.command == QLatin1String(command);
    });
    return isShown && line.kind == LogLine::Kind::Trace;
}

void LogScreen::Show(const LogLine& line, Clock::time_point now) {
    if (!Wants(line) || WeightOfLevel(line.level) < m_options.leastLevel)
        return;
    Tell(now);
    ++m_shown;
    PrintProblem(QStringLiteral("%1  %2  %3  %4")
                     .arg(OnErrors(Ink::Faint, line.time), line.device.leftJustified(m_widest),
                          OnErrors(InkOf(line), LevelName(line).leftJustified(kLevelWidth)), line.text));
}

void LogScreen::Tell(Clock::time_point now) {
    if (now - m_second < std::chrono::seconds(1))
        return;
    m_second = now;
    m_shown = 0;
    if (m_leftOut == 0)
        return;
    PrintProblem(QStringLiteral("%1  ... %2 lines left out: more than %3 came in a second (--log-file keeps all)")
                     .arg(QTime::currentTime().toString(QStringLiteral("HH:mm:ss.zzz")))
                     .arg(m_leftOut)
                     .arg(kMostInASecond));
    m_leftOut = 0;
}

} // namespace stagehost
