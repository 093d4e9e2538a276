#include "Mischief.h"

namespace stagehost {

namespace {

constexpr int kShortestWait = 20; // ms
constexpr int kLongestWait = 400;
constexpr int kLongestStall = 2000;
constexpr int kLongestPause = 30;
constexpr int kMostPieces = 5;

std::vector<Prank> AllPranks() {
    std::vector<Prank> all;
    for (int number = 1; number < kPrankCount; ++number)
        all.push_back(static_cast<Prank>(number));
    return all;
}

} // namespace

QString NameOf(Prank prank) {
    return QLatin1String(kPrankNames[static_cast<int>(prank)]);
}

bool FindPrank(const QString& name, Prank& prank) {
    for (int number = 0; number < kPrankCount; ++number) {
        if (name == QLatin1String(kPrankNames[number])) {
            prank = static_cast<Prank>(number);
            return true;
        }
    }
    return false;
}

Mischief::Mischief(std::uint64_t seed, std::vector<Prank> from, unsigned oneIn)
    : m_chance(seed)
    , m_from(from.empty() ? AllPranks() : std::move(from))
    , m_oneIn(oneIn) {}

PrankedPiece Mischief::Next(const QByteArray& bytes) {
    if (Below(m_oneIn) != 0)
        return Do(Prank::None, bytes);
    return Do(m_from.at(Below(m_from.size())), bytes);
}

PrankedPiece Mischief::Do(Prank prank, const QByteArray& bytes) {
    using End = PrankedPiece::End;
    using Time = std::chrono::milliseconds;
    switch (prank) {
    case Prank::None:
        break;
    case Prank::Late:
        return {prank, Between(kShortestWait, kLongestWait), Time(0), {bytes}, End::None};
    case Prank::Split:
        return {prank, Time(0), Between(0, kLongestPause), Split(bytes), End::None};
    case Prank::Cut:
        return {prank, Time(0), Time(0), {bytes.left(bytes.size() / 2)}, End::Close};
    case Prank::Repeat:
        return {prank, Time(0), Time(0), {bytes, bytes}, End::None};
    case Prank::Reset:
        return {prank, Time(0), Time(0), {}, End::Reset};
    case Prank::Stall:
        return {prank, Between(kLongestWait, kLongestStall), Time(0), {bytes}, End::None};
    case Prank::HalfClose:
        return {prank, Time(0), Time(0), {bytes}, End::HalfClose};
    case Prank::Nonsense:
        return {prank, Time(0), Time(0), {Nonsense(bytes.size())}, End::None};
    case Prank::Silence:
        return {prank, Time(0), Time(0), {}, End::None};
    }
    return {Prank::None, Time(0), Time(0), {bytes}, End::None};
}

/// The slight preference of a remainder for small numbers does not matter here.
std::uint64_t Mischief::Below(std::uint64_t bound) {
    return m_chance() % bound;
}

std::chrono::milliseconds Mischief::Between(int shortest, int longest) {
    const auto least = static_cast<std::uint64_t>(shortest);
    return std::chrono::milliseconds(least + Below(static_cast<std::uint64_t>(longest) - least + 1));
}

std::vector<QByteArray> Mischief::Split(const QByteArray& bytes) {
    std::vector<QByteArray> pieces;
    int at = 0;
    while (bytes.size() - at > 1 && pieces.size() + 1 < kMostPieces) {
        const int size = 1 + static_cast<int>(Below(static_cast<std::uint64_t>(bytes.size() - at)));
        pieces.push_back(bytes.mid(at, size));
        at += size;
    }
    if (at < bytes.size())
        pieces.push_back(bytes.mid(at));
    return pieces;
}

QByteArray Mischief::Nonsense(int size) {
    QByteArray bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(Below(256));
    return bytes;
}

} // namespace stagehost
