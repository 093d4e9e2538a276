#pragma once

#include <chrono>
#include <optional>

#include <QString>
#include <QStringList>

#include "HostSettings.h"
#include "ShowClock.h"

namespace stagehost {

/// What the command line asks for.
struct Options {
    QString command;       ///< the first word
    QStringList arguments; ///< the words behind it
    Link link = Link::Both;
    bool json = false;
    bool log = false;
    QStringList logDevices;        ///< of --log=DEVICE; empty for all
    int leastLevel = 0;            ///< place in kLogLevels from which on lines of the log are shown
    bool strict = false;           ///< of `check`
    bool keepGoing = false;        ///< of `run`
    bool tap = false;              ///< of `run`
    QString junitFile;             ///< of `run`; empty: none
    QString listen;                ///< of `counterpart`, `record`, `replay`: [HOST:]PORT; empty: any free port
    std::optional<quint64> seed{}; ///< of what is drawn by chance
    bool window = false;
    bool reload = false;
    QStringList waits;     ///< of `send`: conditions
    QStringList sets;      ///< of the form [DEVICE.]NAME=VALUE
    QString tcp;           ///< of `record`: [LISTEN:]HOST:PORT; one of the three is given
    QString udp;           ///< of `record`: the same
    QString serial;        ///< of `record`: the port
    QString line;          ///< of `record`: the settings of the serial line
    QString mischief;      ///< of `record`: a seed; empty: none is done
    QString pranks;        ///< of `record`: a list with commas; empty: all
    QString oneIn;         ///< of `record`
    bool fast = false;     ///< of `replay`
    bool anyOrder = false; ///< of `replay`
    QString logFile;       ///< empty: a temporary one
    QString module;        ///< empty: the one beside the program
    std::chrono::milliseconds timeout{10000};
    ClockWish clock;                                 ///< of `run`, `watch` and `test`
    QString clockText;                               ///< what was typed of it
    QString linkText;                                ///< what was typed; empty: nothing
    std::optional<std::chrono::milliseconds> within; ///< of `test`: the limit of each
    std::optional<int> jobs;                         ///< of `test`: how many at once
    bool help = false;
    bool version = false;
};

} // namespace stagehost
