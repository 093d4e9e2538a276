#include "ShowClock.h"

#include <algorithm>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include "OwnClock.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kLeastWork(2000); // real time that a script has for an answer

int wishedSpeed = 1; // host main alone

/// Before the application object stands, which knows where the program is.
QString OwnLibrary() {
    const QString program = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
    return QFileInfo(program).dir().filePath(QLatin1String(kClockLibrary));
}

} // namespace

QDateTime ReadClock(const QString& text) {
    const QString plain = QString(text).replace(QLatin1Char('T'), QLatin1Char(' '));
    const QString day = plain.section(QLatin1Char(' '), 0, -2);
    const QString hour = plain.section(QLatin1Char(' '), -1);
    const QDate date = day.isEmpty() ? QDate::currentDate() : QDate::fromString(day, QStringLiteral("yyyy-MM-dd"));
    const auto* form = hour.size() > 5 ? "HH:mm:ss" : "HH:mm";
    const QTime time = QTime::fromString(hour, QLatin1String(form));
    const QDateTime read(date, time);
    const bool isCounted = date.year() >= kFirstYear && date.year() <= kLastYear;
    const bool isThere =
        read.isValid() && isCounted && QDateTime::fromSecsSinceEpoch(read.toSecsSinceEpoch()).time() == time;
    return isThere ? read : QDateTime();
}

QString ShowClock::Enter(const ClockWish& wish, char** arguments) {
    wishedSpeed = wish.speed;
    if (wish.IsPlain() || DirectsOwnClock())
        return {};
    std::optional<std::int64_t> begin;
    if (!wish.begin.isNull())
        begin = wish.begin.toSecsSinceEpoch();
    return QStringLiteral("there is no time for shows: ") +
           QString::fromStdString(EnterOwnClock(QFile::encodeName(OwnLibrary()).toStdString(), arguments, begin));
}

void ShowClock::Run() {
    if (wishedSpeed > 1)
        RunOwnClock(wishedSpeed);
}

void ShowClock::Rest() {
    RestOwnClock(wishedSpeed > 1);
}

QProcessEnvironment ShowClock::ComputersEnvironment() {
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QLatin1String(kClockVariable)); // without it the library does nothing
    return environment;
}

int ShowClock::Speed() {
    return OwnClockSpeed();
}

std::chrono::milliseconds MachineTime(std::chrono::milliseconds time) {
    return time * ShowClock::Speed();
}

std::chrono::milliseconds AnswerTime(std::chrono::milliseconds limit) {
    return std::max(limit, MachineTime(std::min(limit, kLeastWork)));
}

void KeepPace(QTimer& timer, std::chrono::milliseconds machineTime) {
    const auto wanted = MachineTime(machineTime);
    if (timer.intervalAsDuration() != wanted)
        timer.setInterval(wanted);
}

} // namespace stagehost
