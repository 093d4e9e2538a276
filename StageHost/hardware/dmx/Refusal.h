#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace stagehost {

/// Why a packet was not taken. Nothing that comes from a network is an error of the show: it is counted by its reason.
enum class Refusal {
    None,           ///< taken
    TooShort,       ///< cut before its end
    TooLong,        ///< more bytes than a packet of its kind can have
    NoSuchProtocol, ///< does not begin as packets of this protocol do
    OtherKind,      ///< of this protocol, but of a kind that carries no levels
    BadVersion,     ///< of an edition that is not understood
    BadVector,      ///< a layer that is none of levels
    BadLength,      ///< lengths that contradict each other
    BadFormat,      ///< addresses or types that levels do not have
    BadUniverse,    ///< a number that no universe has
    BadPriority,    ///< above 200
    OtherUniverse,  ///< of a universe that nobody listens to
    OldSequence,    ///< overtaken by a later one
    Preview,        ///< meant for previews, not for light
    OtherStartCode, ///< no levels: a start code other than 0
    TooManySources  ///< of one source more than can be merged
};

/// Each reason with its name for people, in the order of the enumeration.
struct RefusalRow {
    Refusal refusal;
    const char* name;
};

inline constexpr RefusalRow kRefusals[] = {
    {Refusal::None, "taken"},
    {Refusal::TooShort, "too short"},
    {Refusal::TooLong, "too long"},
    {Refusal::NoSuchProtocol, "other protocol"},
    {Refusal::OtherKind, "other kind"},
    {Refusal::BadVersion, "bad version"},
    {Refusal::BadVector, "bad vector"},
    {Refusal::BadLength, "bad length"},
    {Refusal::BadFormat, "bad format"},
    {Refusal::BadUniverse, "bad universe"},
    {Refusal::BadPriority, "bad priority"},
    {Refusal::OtherUniverse, "other universe"},
    {Refusal::OldSequence, "old sequence"},
    {Refusal::Preview, "preview"},
    {Refusal::OtherStartCode, "other start code"},
    {Refusal::TooManySources, "too many sources"},
};

inline constexpr std::size_t kRefusalCount = sizeof(kRefusals) / sizeof(kRefusals[0]);

constexpr bool RefusalsInEnumOrder() {
    for (std::size_t index = 0; index < kRefusalCount; ++index) {
        if (static_cast<std::size_t>(kRefusals[index].refusal) != index)
            return false;
    }
    return true;
}
static_assert(RefusalsInEnumOrder() && kRefusalCount == static_cast<std::size_t>(Refusal::TooManySources) + 1,
              "the table is indexed by the reason");

/// How many packets went which way.
class RefusalCounts {
public:
    void Add(Refusal refusal) { ++m_counts[static_cast<std::size_t>(refusal)]; }
    void Add(const RefusalCounts& other) {
        for (std::size_t index = 0; index < kRefusalCount; ++index)
            m_counts[index] += other.m_counts[index];
    }
    std::uint64_t Of(Refusal refusal) const { return m_counts[static_cast<std::size_t>(refusal)]; }

    /// All that were not taken.
    std::uint64_t Refused() const {
        std::uint64_t sum = 0;
        for (std::size_t index = 1; index < kRefusalCount; ++index)
            sum += m_counts[index];
        return sum;
    }

private:
    std::array<std::uint64_t, kRefusalCount> m_counts{};
};

} // namespace stagehost
