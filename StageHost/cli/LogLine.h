#pragma once

#include <QString>
#include <QStringList>

namespace stagehost {

/// One line of the module's log, taken apart.
struct LogLine {
    enum class Kind {
        Trace,    ///< what a script has traced or printed
        Commands, ///< what a device does with its commands
        Failure,  ///< what has failed in a script
        Detail,   ///< more about the failure before it
        Other     ///< what belongs to none of the devices
    };

    Kind kind = Kind::Other;
    QString time; ///< "19:30:00.450", local; empty when the line has none
    int level = 0;
    QString device;
    QString text;
};

/// @param devices those that lines may belong to.   [any]
LogLine ReadLogLine(const QString& line, const QStringList& devices);

/// A level of the log, as scripts name it.
struct LogLevel {
    const char* name;
    int number;
};

/// From the one that says least to the one that says most.
inline constexpr LogLevel kLogLevels[] = {{"debug", 7},  {"comment", 3}, {"info", 2},  {"normalplus", 1},
                                          {"normal", 0}, {"alarm", 4},   {"error", 5}, {"fatal", 6}};

/// The place of a level in that order; that of the least for a number that none has.   [any]
int WeightOfLevel(int number);

} // namespace stagehost
