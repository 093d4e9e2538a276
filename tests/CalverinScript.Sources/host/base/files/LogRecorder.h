#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// What the recording logging library has been told, and how it answers. Found as the symbol "Recorder" of its file.
struct LogRecorder {
    struct Line {
        std::int32_t level;
        std::string text;
    };

    bool refuse = false;           ///< no handle is given out
    std::int32_t otherWriters = 0; ///< writers of other modules that the counter includes

    std::int32_t writers = 0;
    std::string programName;
    std::uint32_t recordSize = 0;
    std::string path;
    std::uint32_t writerId = 0;
    std::uint32_t option1 = 0;
    std::uint32_t option2 = 0;
    std::uint32_t reserved = 0;
    std::vector<Line> lines;
};
