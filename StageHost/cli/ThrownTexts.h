#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QString>
#include <QStringList>

#include "LogLine.h"

namespace stagehost {

/// A text that a script has thrown, with what the log tells of its place, a line each.
struct ThrownText {
    QString text;
    QStringList place;
};

/// What scripts throw and nobody catches, as the log tells it.
/// The same text from the same place that comes again within a second is counted, and the count is printed.
///
/// What a call throws that somebody waits for is its failure, and is told by whoever made the call. All else, that of
/// timers and events above all, is printed as it comes, with the device's name in front, and is not forgotten: a run
/// in which it happened did not go well.   [host main]
class ThrownTexts {
public:
    using Clock = std::chrono::steady_clock;

    /// Makes the place of a text that a device has thrown one that the user knows.
    using UsersPlace = std::function<QStringList(const QString& device, const QStringList& place)>;

    /// @param usersPlace may be empty.
    explicit ThrownTexts(UsersPlace usersPlace = {})
        : m_usersPlace(std::move(usersPlace)) {}

    /// Looks at a line of the log.
    void Take(const LogLine& line, Clock::time_point now);

    /// Failures of commands that scripts and tasks have sent to each other: who sent them has been told, and may have
    /// made something of it. So what was thrown there is not printed once more.
    void Answered(const std::vector<std::string>& failures, Clock::time_point now);

    /// Prints what nobody has answered for.
    /// @param now what came half a second before or less may still be answered for; nothing
    /// is left after Clock::time_point::max().
    void Tell(Clock::time_point now);

    /// From now on what the device throws is kept for End.
    void Begin(const QString& device);

    /// @return what the device has thrown since Begin, the first first.
    std::vector<ThrownText> End();

    /// Prints what was thrown beside a call that is over, unless it is answered for.
    void TellBeside(const QString& device, const std::vector<ThrownText>& texts, Clock::time_point now);

    /// The first text that was printed, with its device; empty when none was.
    const ThrownText& FirstTold() const { return m_firstTold; }

    /// Where the script of a device was when it had to be stopped; empty when it was not, or has been told.
    QStringList TakeStopped(const QString& device);
    /// The same of any device.
    QStringList TakeStopped();
    /// How many of them wait to be taken of which nothing more has come since then.
    std::ptrdiff_t Stopped(Clock::time_point then) const;

    /// Whether a text that was thrown is the message that a command has failed with.
    static bool IsOf(const QString& thrown, const QString& failure);

private:
    struct Entry {
        QString device;
        ThrownText thrown;
        Clock::time_point came;
        Clock::time_point grown = came; ///< when the last line about it came
    };

    void TakeFailure(const LogLine& line, Clock::time_point now);
    void TakeDetail(const LogLine& line, Clock::time_point now);
    QStringList TakeStoppedAt(std::vector<Entry>::iterator entry);
    void Print(const Entry& entry);
    void TellAgain();

    const UsersPlace m_usersPlace;
    QString m_awaited; ///< empty when nobody waits
    std::vector<Entry> m_kept;
    std::vector<Entry> m_stopped;
    std::vector<Entry> m_waiting; ///< those that may still be answered for
    std::vector<std::pair<QString, Clock::time_point>> m_answers;
    ThrownText m_firstTold;
    Entry m_lastTold;
    int m_again = 0; ///< how often that came again since it was printed
};

} // namespace stagehost
