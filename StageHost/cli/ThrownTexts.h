#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <QString>
#include <QStringList>

namespace stagehost {

/// What scripts throw and nobody catches, as the log tells it.
///
/// What a call throws that somebody waits for is its failure, and is told by whoever made the call. All else, that of
/// timers and events above all, is printed as it comes, with the device's name in front, and is not forgotten: a run
/// in which it happened did not go well.   [host main]
class ThrownTexts {
public:
    using Clock = std::chrono::steady_clock;

    void Add(const QString& device) { m_devices += device; }

    /// Looks at a line of the log.
    void Take(const QString& line, Clock::time_point now);

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
    QStringList End();

    /// Prints what was thrown beside a call that is over, unless it is answered for.
    void TellBeside(const QString& device, const QStringList& texts, Clock::time_point now);

    /// The first text that was printed, with its device; empty when none was.
    const QString& FirstTold() const { return m_firstTold; }

    /// Whether a text that was thrown is the message that a command has failed with.
    static bool IsOf(const QString& thrown, const QString& failure);

private:
    struct Entry {
        QString device;
        QString text;
        Clock::time_point came;
    };

    void Print(const Entry& entry);

    QStringList m_devices;
    QString m_awaited; ///< empty when nobody waits
    QStringList m_kept;
    std::vector<Entry> m_waiting; ///< those that may still be answered for
    std::vector<std::pair<QString, Clock::time_point>> m_answers;
    QString m_firstTold;
};

} // namespace stagehost
