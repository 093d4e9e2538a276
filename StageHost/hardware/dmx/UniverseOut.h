#pragma once

#include <optional>

#include "DmxLevels.h"

namespace stagehost {

/// DMX512 brings at most 44 frames of 512 channels a second, and so do its networks.
inline constexpr int kFastestDmxRate = 44;

/// When the frames of one universe leave.
struct OutRules {
    int rate = kFastestDmxRate; ///< frames a second at most
    bool continuous = false;    ///< frames leave at the rate also when nothing changes
    bool countsFromZero = true; ///< sequence numbers: 0 to 255; otherwise 1 to 255
    int ends = 0;               ///< packets that tell the end
};

/// ANSI E1.31-2018: three packets with the option Stream_Terminated at the end.
inline constexpr int kSacnEnds = 3;

/// Both protocols: a change is sent three times, then what stands is sent again each 800 to 1000 ms.
inline constexpr int kChangeRepeats = 3;
inline constexpr std::chrono::milliseconds kKeepAlive(900);

/// One frame that leaves now.
struct Departure {
    std::uint8_t sequence = 0;
    bool terminated = false;
    DmxFrame frame; ///< always all 512 channels
    DmxTime due;    ///< when it should have left
};

/// The levels of a universe that go to the network, and when. Not for two threads at once.
class UniverseOut {
public:
    explicit UniverseOut(const OutRules& rules);

    /// Begins to send what stands, from now on.
    void Open(DmxTime now);

    /// Sends no more levels; what tells the end follows.
    void Close(DmxTime now);

    /// Gives channels new levels, beginning with channel start,
    /// which counts from 0; what lies beyond the universe is cut.
    /// @return false for a start beyond the universe.
    bool Write(const std::uint8_t* levels, std::size_t start, std::size_t count, DmxTime now);

    const DmxFrame& Levels() const { return m_frame; }
    bool IsOpen() const { return m_open; }

    /// When the next frame is to leave; none when there is nothing more to send.
    std::optional<DmxTime> NextDue() const;

    /// The frame that leaves now, if it is time.
    std::optional<Departure> TakeDue(DmxTime now);

private:
    void SendChange(DmxTime now);
    std::uint8_t NextSequence();
    std::chrono::nanoseconds Pause() const;

    const OutRules m_rules;
    const std::chrono::nanoseconds m_period;
    DmxFrame m_frame;
    bool m_open = false;
    int m_repeats = 0; ///< frames that follow at the rate
    int m_ends = 0;    ///< packets of the end that are still to leave
    std::uint8_t m_sequence = 0;
    std::optional<DmxTime> m_earliest; ///< the next frame may not leave before
    DmxTime m_next;                    ///< counts while something is to leave
};

} // namespace stagehost
