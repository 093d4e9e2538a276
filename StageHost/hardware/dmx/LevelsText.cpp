#include "LevelsText.h"

#include <algorithm>
#include <sstream>

namespace stagehost {

namespace {

/// "FIRST=LEVEL" or "FIRST-LAST=LEVEL".
bool ReadRange(const std::string& word, DmxFrame& frame) {
    std::istringstream in(word);
    std::size_t first = 0;
    int level = 0;
    char sign = 0;
    if (!(in >> first >> sign))
        return false;
    std::size_t last = first;
    if (sign == '-' && !(in >> last >> sign))
        return false;
    if (sign != '=' || !(in >> level) || in.get() != std::char_traits<char>::eof())
        return false;
    if (first < 1 || last < first || last > kUniverseSize || level < 0 || level > 255)
        return false;
    std::fill_n(frame.levels.begin() + static_cast<std::ptrdiff_t>(first - 1), last - first + 1,
                static_cast<std::uint8_t>(level));
    return true;
}

} // namespace

std::string LevelsText(const DmxFrame& frame) {
    std::string text;
    for (std::size_t first = 0; first < kUniverseSize;) {
        std::size_t end = first + 1;
        while (end < kUniverseSize && frame.levels[end] == frame.levels[first])
            ++end;
        if (frame.levels[first] != 0) {
            text += (text.empty() ? "" : " ") + std::to_string(first + 1);
            if (end > first + 1)
                text += "-" + std::to_string(end);
            text += "=" + std::to_string(frame.levels[first]);
        }
        first = end;
    }
    return text;
}

bool ReadLevels(const std::string& text, DmxFrame& frame) {
    DmxFrame read;
    read.count = kUniverseSize;
    std::istringstream words(text);
    std::string word;
    while (words >> word) {
        if (!ReadRange(word, read))
            return false;
    }
    frame = read;
    return true;
}

} // namespace stagehost
