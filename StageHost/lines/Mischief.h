#pragma once

#include <chrono>
#include <random>
#include <vector>

#include <QByteArray>
#include <QString>

namespace stagehost {

/// What a line can do to what goes over it.
enum class Prank {
    None,      ///< passes it on
    Late,      ///< passes it on late
    Split,     ///< in several pieces, with pauses
    Cut,       ///< the first half of it, and then the end of the connection
    Repeat,    ///< twice
    Reset,     ///< a reset instead of it
    Stall,     ///< for a while nothing goes on, this neither
    HalfClose, ///< passes it on, and says that nothing more comes
    Nonsense,  ///< as many bytes of chance instead
    Silence    ///< nothing instead
};

inline constexpr const char* kPrankNames[] = {"none",  "late",  "split",      "cut",      "repeat",
                                              "reset", "stall", "half-close", "nonsense", "silence"};
inline constexpr int kPrankCount = sizeof kPrankNames / sizeof *kPrankNames;

QString NameOf(Prank prank);
bool FindPrank(const QString& name, Prank& prank);

/// What becomes of a piece of bytes: first the wait, then the pieces with the pause between them, then the end.
struct PrankedPiece {
    enum class End { None, Close, HalfClose, Reset };

    Prank prank = Prank::None;
    std::chrono::milliseconds wait{0};
    std::chrono::milliseconds pause{0};
    std::vector<QByteArray> pieces;
    End end = End::None;
};

/// Draws pranks from a seed: the same seed and the same count of pieces give the same pranks on every
/// machine.   [one thread]
class Mischief {
public:
    /// @param from what is drawn; empty for all but None.
    /// @param oneIn of so many pieces one is pranked on the average; 1 for each.
    explicit Mischief(std::uint64_t seed, std::vector<Prank> from = {}, unsigned oneIn = 4);

    /// What becomes of the next piece.
    PrankedPiece Next(const QByteArray& bytes);

    /// What a certain prank makes of a piece.
    PrankedPiece Do(Prank prank, const QByteArray& bytes);

private:
    std::uint64_t Below(std::uint64_t bound);
    std::chrono::milliseconds Between(int shortest, int longest);
    std::vector<QByteArray> Split(const QByteArray& bytes);
    QByteArray Nonsense(int size);

    std::mt19937_64 m_chance;
    const std::vector<Prank> m_from;
    const unsigned m_oneIn;
};

} // namespace stagehost
