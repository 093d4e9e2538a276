#include "LogLine.h"

#include <algorithm>
#include <iterator>

#include "LogLines.h"

namespace stagehost {

namespace {

constexpr int kDateLength = 11; // "2026-11-22 "
constexpr int kTimeLength = 12; // "19:30:00.450"

bool IsAboutCommands(const QString& text) {
    return std::any_of(std::begin(KXP_LOG_COMMANDS), std::end(KXP_LOG_COMMANDS),
                       [&](const char* name) { return text.startsWith(QLatin1String(name) + QLatin1String(" [")); });
}

/// The text behind a device's name; null when the line is of another form.
QString TextBehind(const QString& line, const char* begin, const QString& device) {
    const QString mark = QLatin1String(": ") + QLatin1String(begin) + device + QLatin1String("] ");
    const int place = line.indexOf(mark);
    return place < 0 ? QString() : line.mid(place + mark.size());
}

void ReadTimeAndLevel(const QString& line, LogLine& read) {
    const int open = line.indexOf(QLatin1Char('['));
    const int close = line.indexOf(QLatin1Char(']'), open);
    if (open < 0 || close < 0)
        return;
    read.level = line.midRef(open + 1, close - open - 1).toInt();
    if (open >= kDateLength + kTimeLength)
        read.time = line.mid(kDateLength, kTimeLength);
}

} // namespace

LogLine ReadLogLine(const QString& line, const QStringList& devices) {
    LogLine read;
    ReadTimeAndLevel(line, read);
    for (const QString& device : devices) {
        const QString failure = TextBehind(line, KXP_LOG_FAILURE, device);
        const QString text = failure.isNull() ? TextBehind(line, KXP_LOG_DEVICE, device) : failure;
        if (text.isNull())
            continue;
        read.device = device;
        read.text = text;
        if (failure.isNull())
            read.kind = IsAboutCommands(text) ? LogLine::Kind::Commands : LogLine::Kind::Trace;
        else
            read.kind = text.startsWith(QLatin1String(KXP_LOG_DETAIL)) ? LogLine::Kind::Detail : LogLine::Kind::Failure;
        return read;
    }
    read.text = line.mid(line.indexOf(QLatin1String("] ")) + 2);
    return read;
}

int WeightOfLevel(int number) {
    const auto* found = std::find_if(std::begin(kLogLevels), std::end(kLogLevels),
                                     [number](const LogLevel& level) { return level.number == number; });
    return found == std::end(kLogLevels) ? 0 : static_cast<int>(found - std::begin(kLogLevels));
}

} // namespace stagehost
