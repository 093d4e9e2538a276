#include "UniverseOut.h"

#include <algorithm>

namespace stagehost {

UniverseOut::UniverseOut(const OutRules& rules)
    : m_rules(rules)
    , m_period(std::chrono::nanoseconds(std::chrono::seconds(1)) / rules.rate) {
    m_frame.count = kUniverseSize;
}

void UniverseOut::Open(DmxTime now) {
    m_ends = 0;
    m_open = true;
    SendChange(now);
}

void UniverseOut::Close(DmxTime now) {
    if (!m_open)
        return;
    m_open = false;
    m_ends = m_rules.ends;
    m_next = m_earliest ? std::max(now, *m_earliest) : now;
}

bool UniverseOut::Write(const std::uint8_t* levels, std::size_t start, std::size_t count, DmxTime now) {
    if (start >= kUniverseSize)
        return false;
    count = std::min(count, kUniverseSize - start);
    const auto first = m_frame.levels.begin() + static_cast<std::ptrdiff_t>(start);
    if (std::equal(levels, levels + count, first))
        return true;
    std::copy_n(levels, count, first);
    if (m_open)
        SendChange(now);
    return true;
}

void UniverseOut::SendChange(DmxTime now) {
    m_repeats = kChangeRepeats;
    m_next = m_earliest ? std::max(now, *m_earliest) : now;
}

std::optional<DmxTime> UniverseOut::NextDue() const {
    return m_open || m_ends > 0 ? std::optional(m_next) : std::nullopt;
}

std::optional<Departure> UniverseOut::TakeDue(DmxTime now) {
    if ((!m_open && m_ends == 0) || now < m_next)
        return std::nullopt;
    const Departure departure{NextSequence(), !m_open, m_frame, m_next};
    // Times stand on a grid, so that one late frame does not delay
    // all that follow; after a long gap the grid begins anew.
    const DmxTime left = now - m_next > m_period ? now : m_next;
    if (m_open)
        m_repeats = std::max(0, m_repeats - 1);
    else
        --m_ends;
    m_earliest = left + m_period;
    m_next = left + Pause();
    return departure;
}

std::chrono::nanoseconds UniverseOut::Pause() const {
    return !m_open || m_rules.continuous || m_repeats > 0 ? m_period : std::chrono::nanoseconds(kKeepAlive);
}

std::uint8_t UniverseOut::NextSequence() {
    const std::uint8_t sequence = m_sequence == 0 && !m_rules.countsFromZero ? std::uint8_t(1) : m_sequence;
    m_sequence = static_cast<std::uint8_t>(sequence + 1);
    return sequence;
}

} // namespace stagehost
