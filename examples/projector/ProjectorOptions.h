#pragma once

#include <QByteArray>
#include <QStringList>

#include "Projector.h"

namespace projector {

/// What the command line asks for.
struct Options {
    Description description;
    quint16 port = 0;    ///< 0: the system chooses
    QByteArray password; ///< empty: none
    int idle = 30000;    ///< ms until a silent client is sent away
    int dropAfter = 0;   ///< answers after which a connection is closed; 0: none
    int slow = 0;        ///< ms before each answer
    bool split = false;  ///< answers go out byte by byte
    bool trace = false;  ///< commands are printed
    bool help = false;
    QString problem; ///< what is wrong with the command line; empty when nothing is
};

/// @param words the command line with the program's name in front.
Options ReadOptions(const QStringList& words);

/// The text of --help.
QString HelpText();

} // namespace projector
