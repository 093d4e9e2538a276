#pragma once

#include <chrono>
#include <optional>

#include <QDateTime>
#include <QProcessEnvironment>
#include <QString>

class QTimer;

namespace stagehost {

/// What is wanted of the time of a show.
struct ClockWish {
    int speed = 1;   ///< how many times as fast as the computer's
    QDateTime begin; ///< what the clock shows as the program begins; null for the computer's time

    bool IsPlain() const { return speed == 1 && begin.isNull(); }
};

inline constexpr int kFastest = 3600; // an hour in a second

/// Reads "08:30", "08:30:15", or one with a date in front: "2026-12-24 19:30". Local time.
/// @return null when the text is none, or when that time is left out on that day.   [any]
QDateTime ReadClock(const QString& text);
inline constexpr int kFirstYear = 1970;
inline constexpr int kLastYear = 2199; // nanoseconds since 1970 fill 63 bits some decades later

/// The time of the show that this process plays: that of the computer, or another that runs faster while the show
/// does. Its beginning and its end, where programs start and end, take the time of the computer.
///
/// All that asks the system for the time or waits in this process, and in those that it starts, lives in this time:
/// timers, time-outs, the scripts' own clock. What measures the computer and not the show takes MachineTime.
class ShowClock {
public:
    /// Gives the process, and those that it starts, such a time; at once when it has it. The process begins anew for
    /// that, so this comes before anything else. @param arguments as main has them.
    /// @return what is wrong; empty when the time is there.   [host main]
    static QString Enter(const ClockWish& wish, char** arguments);

    /// The show begins: from now on time runs as wished.   [host main]
    static void Run();
    /// The show is over, or has not begun: the computer's speed.   [host main]
    static void Rest();

    static int Speed(); ///< of now   [any]

    /// For programs that are no part of the show.   [any]
    static QProcessEnvironment ComputersEnvironment();
};

/// The computer's speed as long as an object stands, for what the show has to wait for.   [host main]
class ShowRest {
public:
    ShowRest()
        : m_wasRunning(ShowClock::Speed() > 1) {
        ShowClock::Rest();
    }
    ~ShowRest() {
        if (m_wasRunning)
            ShowClock::Run();
    }
    ShowRest(const ShowRest&) = delete;
    ShowRest& operator=(const ShowRest&) = delete;

private:
    const bool m_wasRunning;
};

/// A time of the computer in that of the show: for limits that say how long a computer may take, and for looks that
/// it takes again and again.   [any]
std::chrono::milliseconds MachineTime(std::chrono::milliseconds time);

/// How long an answer of a script is waited for: the limit in the time of the show, and two seconds of the computer at
/// least where the limit is not shorter, since a script that works takes the computer's time.   [any]
std::chrono::milliseconds AnswerTime(std::chrono::milliseconds limit);

/// Keeps a timer at a time of the computer; called each time that it has come.   [host main]
void KeepPace(QTimer& timer, std::chrono::milliseconds machineTime);

} // namespace stagehost
