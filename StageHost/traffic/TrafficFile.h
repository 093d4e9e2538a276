#pragma once

#include <optional>
#include <vector>

#include "TrafficEntry.h"
#include "TrafficPattern.h"

namespace stagehost {

/// Something that the device does behind a request, or on its own.
struct TrafficAnswer {
    enum class What { Say, End, Close, Reset };

    What what = What::Say;
    std::int64_t delay = 0; ///< ms behind what went by before it
    TrafficPattern bytes;
};

/// A request and what follows it until the next one.
struct TrafficExchange {
    TrafficPattern request;
    int line = 0; ///< of the file
    std::vector<TrafficAnswer> answers;
};

/// What went by on one connection.
struct TrafficTalk {
    int connection = 0;
    std::vector<TrafficAnswer> greeting; ///< what the device says before it was asked anything
    std::vector<TrafficExchange> exchanges;
};

/// A traffic file as it is played.
struct TrafficFile {
    TrafficHead head;
    std::vector<TrafficTalk> talks; ///< in the order in which they were opened
};

/// Reads a traffic file. What a program says in several pieces without an answer in between is one request, except with
/// datagrams; several lines with as many lines of answer are requests of their own.
/// @param problem receives what is wrong, with the line.   [any]
std::optional<TrafficFile> ReadTrafficFile(const QString& file, QString& problem);

} // namespace stagehost
