#pragma once

#include <cstdint>

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include "LinePlace.h"

namespace stagehost {

/// The two sides of a line.
enum class Side { Program, Device };

inline constexpr const char* kSideNames[] = {"program", "device"};

/// What happens on a line.
enum class TrafficEvent {
    Bytes,       ///< one side says something
    Opened,      ///< a program has come
    Ended,       ///< one side says no more, and may still listen
    Reset,       ///< one side has thrown the connection away
    Closed,      ///< one side has gone
    Unreachable, ///< the device cannot be reached
    Back,        ///< the device is there again
    Prank,       ///< the line has done something on purpose
    End          ///< the recording ends; only such a file is complete
};

inline constexpr const char* kTrafficEventNames[] = {"bytes",       "opened", "ended", "reset", "closed",
                                                     "unreachable", "back",   "prank", "end"};

/// One line of a traffic file behind the first.
struct TrafficEntry {
    std::int64_t at = 0; ///< ms since the begin
    int connection = 0;  ///< counted from 1; 0 for what belongs to none
    TrafficEvent event = TrafficEvent::Bytes;
    Side by = Side::Program; ///< of all but Opened, Unreachable, Back and End
    QByteArray bytes;        ///< of Bytes
    QString text{};          ///< who has come, why it ended, which prank
};

/// The first line of a traffic file.
struct TrafficHead {
    LinePlace device;     ///< where the device was
    QString lineSettings; ///< of a serial line: "9600,8n1"
    QString began;        ///< ISO 8601
};

/// What stands in the first line of every traffic file.
inline constexpr const char* kTrafficMark = "\"traffic\":1";

/// As lines, each with its line feed. Keys are in alphabetical order, so that files can be compared.   [any]
QByteArray LineOf(const TrafficHead& head);
QByteArray LineOf(const TrafficEntry& entry);

} // namespace stagehost
