#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "DmxLevels.h"
#include "Refusal.h"

namespace stagehost {

/// Tells the sources of a universe apart: the identifier of a sACN sender, the address and input of an Art-Net one.
using DmxSourceKey = std::array<std::uint8_t, 16>;

/// How the sources of one universe are merged.
struct MergeRules {
    std::size_t mostSources;
    std::chrono::milliseconds silence; ///< after which a source is let go
};

/// ANSI E1.31 lets a source go after 2.5 s (E131_NETWORK_DATA_LOSS_TIMEOUT), and its sources speak each second.
inline constexpr MergeRules kSacnMerge{32, std::chrono::milliseconds(2500)};
/// Art-Net merges two sources. These speak every four seconds when nothing changes, so they are let go after ten.
inline constexpr MergeRules kArtNetMerge{2, std::chrono::milliseconds(10000)};

/// What a packet of any protocol says of a universe.
struct HeardFrame {
    DmxSourceKey source{};
    std::string name; ///< for people
    std::uint8_t priority = 0;
    std::optional<std::uint8_t> sequence; ///< none: the sender does not count
    bool preview = false;
    bool terminated = false; ///< the source ends
    std::uint8_t startCode = 0;
    DmxFrame frame;
};

/// The levels of a universe that come from the network: of the sources with the highest priority the highest value of
/// each channel. When no source is left the levels stay. Not for two threads at once.
class UniverseIn {
public:
    explicit UniverseIn(const MergeRules& rules)
        : m_rules(rules) {}

    /// What one packet did.
    struct Outcome {
        Refusal refusal = Refusal::None;
        bool changed = false;   ///< Merged is new
        bool newSource = false; ///< it is the first of its source
    };

    /// Takes a packet. One that was overtaken is refused: its sequence is up to 19 behind the last one (ANSI
    /// E1.31-2018, 6.7.2). Previews, ends and other start codes carry no levels.
    Outcome Take(const HeardFrame& heard, DmxTime now);

    /// Lets go of the sources that have been silent. @param changed set to true when Merged is new.
    /// @return their names.
    std::vector<std::string> Expire(DmxTime now, bool& changed);

    /// Forgets the sources; the levels stay.
    void Clear() { m_sources.clear(); }

    /// When Expire has something to do at the earliest; none without sources.
    std::optional<DmxTime> NextExpiry() const;

    const DmxFrame& Merged() const { return m_merged; }
    bool HasData() const { return m_hasData; }

    struct Source {
        DmxSourceKey key{};
        std::string name;
        std::uint8_t priority = 0;
        std::optional<std::uint8_t> sequence;
        DmxTime lastHeard;
        DmxFrame frame;
    };
    const std::vector<Source>& Sources() const { return m_sources; }

private:
    std::vector<Source>::iterator Find(const DmxSourceKey& key);
    bool Merge();

    const MergeRules m_rules;
    std::vector<Source> m_sources;
    DmxFrame m_merged;
    bool m_hasData = false; ///< a source has been heard, ever
};

} // namespace stagehost
