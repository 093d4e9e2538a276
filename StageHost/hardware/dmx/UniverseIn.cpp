#include "UniverseIn.h"

#include <algorithm>

namespace stagehost {

namespace {

/// A packet that is up to this many behind the last one was overtaken; one that is further behind begins anew.
constexpr int kOvertaken = 20;

bool WasOvertaken(const UniverseIn::Source& source, const HeardFrame& heard) {
    if (!source.sequence || !heard.sequence)
        return false;
    const auto ahead = static_cast<std::int8_t>(static_cast<std::uint8_t>(*heard.sequence - *source.sequence));
    return ahead <= 0 && ahead > -kOvertaken;
}

} // namespace

UniverseIn::Outcome UniverseIn::Take(const HeardFrame& heard, DmxTime now) {
    auto source = Find(heard.source);
    const bool known = source != m_sources.end();
    if (known && WasOvertaken(*source, heard))
        return {Refusal::OldSequence};
    if (known)
        source->sequence = heard.sequence;
    if (heard.terminated) {
        if (!known)
            return {};
        m_sources.erase(source);
        return {Refusal::None, Merge()};
    }
    if (heard.preview)
        return {Refusal::Preview};
    if (heard.startCode != 0)
        return {Refusal::OtherStartCode};
    if (!known && m_sources.size() >= m_rules.mostSources)
        return {Refusal::TooManySources};
    if (!known)
        source = m_sources.insert(m_sources.end(), Source{heard.source, heard.name, 0, heard.sequence, now, {}});
    source->priority = heard.priority;
    source->lastHeard = now;
    source->frame = heard.frame;
    return {Refusal::None, Merge(), !known};
}

std::vector<std::string> UniverseIn::Expire(DmxTime now, bool& changed) {
    std::vector<std::string> gone;
    const auto silent = [&](const Source& source) { return now - source.lastHeard >= m_rules.silence; };
    for (const auto& source : m_sources) {
        if (silent(source))
            gone.push_back(source.name);
    }
    m_sources.erase(std::remove_if(m_sources.begin(), m_sources.end(), silent), m_sources.end());
    if (!gone.empty() && Merge())
        changed = true;
    return gone;
}

std::optional<DmxTime> UniverseIn::NextExpiry() const {
    if (m_sources.empty())
        return std::nullopt;
    const auto earlier = [](const Source& one, const Source& other) { return one.lastHeard < other.lastHeard; };
    return std::min_element(m_sources.begin(), m_sources.end(), earlier)->lastHeard + m_rules.silence;
}

std::vector<UniverseIn::Source>::iterator UniverseIn::Find(const DmxSourceKey& key) {
    return std::find_if(m_sources.begin(), m_sources.end(), [&](const Source& source) { return source.key == key; });
}

/// @return whether the merged levels are new.
bool UniverseIn::Merge() {
    if (m_sources.empty())
        return false;
    const auto lower = [](const Source& one, const Source& other) { return one.priority < other.priority; };
    const std::uint8_t highest = std::max_element(m_sources.begin(), m_sources.end(), lower)->priority;
    DmxFrame merged;
    for (const auto& source : m_sources) {
        if (source.priority != highest)
            continue;
        merged.count = std::max(merged.count, source.frame.count);
        for (std::size_t channel = 0; channel < source.frame.count; ++channel)
            merged.levels[channel] = std::max(merged.levels[channel], source.frame.levels[channel]);
    }
    const bool changed = !m_hasData || merged != m_merged;
    m_hasData = true;
    m_merged = merged;
    return changed;
}

} // namespace stagehost
