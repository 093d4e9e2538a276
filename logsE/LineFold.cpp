#include "LineFold.h"

#include <algorithm>

namespace logsE {

namespace {

constexpr std::size_t kMostStreams = 256; // more than a show has devices
constexpr char kBetween = '\n';           // between source and name, neither of which has one

/// The name that a text begins with, up to "] "; empty when there is none.
std::string NameOf(const std::string& text) {
    const std::size_t open = text.find('[');
    const std::size_t close = open == std::string::npos ? open : text.find("] ", open);
    return close == std::string::npos ? std::string() : text.substr(0, close + 2);
}

bool IsContinued(const std::string& text, const std::string& name) {
    return text.compare(name.size(), 1, " ") == 0;
}

} // namespace

bool LineFold::Take(std::int32_t level, const std::string& source, const std::string& text, Clock::time_point now) {
    if (m_streams.size() >= kMostStreams) {
        TellAll();
        m_streams.clear();
    }
    const std::string name = NameOf(text);
    const std::string stream = source + kBetween + name;
    Last& last = m_streams[stream];
    const bool isAgain = last.level == level && last.text == text && !text.empty() && !IsContinued(text, name);
    if (isAgain) {
        ++last.again;
        return now - last.written < kPeriod || Tell(stream, last, now);
    }
    const bool told = Tell(stream, last, now);
    last = {level, text, 0, now};
    return m_write(level, source, text) && told;
}

bool LineFold::Tell(const std::string& stream, Last& last, Clock::time_point now) {
    if (last.again == 0)
        return true;
    const std::size_t between = stream.find(kBetween);
    const std::string count = last.again == 1 ? "once" : std::to_string(last.again) + " times";
    last.again = 0;
    last.written = now;
    return m_write(last.level, stream.substr(0, between), stream.substr(between + 1) + "... " + count + " more");
}

bool LineFold::TellDue(Clock::time_point now) {
    bool told = true;
    for (auto& [stream, last] : m_streams) {
        if (now - last.written >= kPeriod)
            told = Tell(stream, last, now) && told;
    }
    return told;
}

bool LineFold::TellAll() {
    bool told = true;
    for (auto& [stream, last] : m_streams)
        told = Tell(stream, last, Clock::now()) && told;
    return told;
}

bool LineFold::IsWaiting() const {
    return std::any_of(m_streams.begin(), m_streams.end(), [](const auto& entry) { return entry.second.again > 0; });
}

} // namespace logsE
