#include "Mischief.h"

#include <algorithm>
#include <set>

#include <gtest/gtest.h>

using namespace stagehost;

namespace {

QByteArray Joined(const PrankedPiece& piece) {
    QByteArray all;
    for (const QByteArray& part : piece.pieces)
        all += part;
    return all;
}

std::vector<Prank> Draw(std::uint64_t seed, int count) {
    Mischief mischief(seed);
    std::vector<Prank> drawn;
    for (int piece = 0; piece < count; ++piece)
        drawn.push_back(mischief.Next("bytes").prank);
    return drawn;
}

} // namespace

TEST(MischiefBySeed, TheSameSeedPlaysTheSamePranks) {
    EXPECT_EQ(Draw(7, 500), Draw(7, 500));
    EXPECT_NE(Draw(7, 500), Draw(8, 500));
}

TEST(MischiefBySeed, EachPrankComesAndMostPiecesPass) {
    const std::vector<Prank> drawn = Draw(1, 2000);
    EXPECT_EQ(std::set<Prank>(drawn.begin(), drawn.end()).size(), static_cast<std::size_t>(kPrankCount));
    const auto passed = std::count(drawn.begin(), drawn.end(), Prank::None);
    EXPECT_GT(passed, 1350);
    EXPECT_LT(passed, 1650);
}

TEST(MischiefBySeed, OnlyWhatIsAskedForIsDrawn) {
    Mischief mischief(3, {Prank::Repeat}, 1);
    for (int count = 0; count < 50; ++count)
        EXPECT_EQ(mischief.Next("x").prank, Prank::Repeat);
}

TEST(Pranks, MakeOfAPieceWhatTheirNamesSay) {
    using End = PrankedPiece::End;
    Mischief mischief(5);
    const QByteArray bytes("%1POWR=OK\r");
    EXPECT_EQ(Joined(mischief.Do(Prank::None, bytes)), bytes);
    EXPECT_GT(mischief.Do(Prank::Late, bytes).wait.count(), 0);
    EXPECT_EQ(Joined(mischief.Do(Prank::Late, bytes)), bytes);
    EXPECT_EQ(Joined(mischief.Do(Prank::Cut, bytes)), bytes.left(5));
    EXPECT_EQ(mischief.Do(Prank::Cut, bytes).end, End::Close);
    EXPECT_EQ(Joined(mischief.Do(Prank::Repeat, bytes)), bytes + bytes);
    EXPECT_EQ(mischief.Do(Prank::Reset, bytes).end, End::Reset);
    EXPECT_EQ(mischief.Do(Prank::HalfClose, bytes).end, End::HalfClose);
    EXPECT_EQ(Joined(mischief.Do(Prank::HalfClose, bytes)), bytes);
    EXPECT_EQ(Joined(mischief.Do(Prank::Nonsense, bytes)).size(), bytes.size());
    EXPECT_NE(Joined(mischief.Do(Prank::Nonsense, bytes)), bytes);
    EXPECT_EQ(Joined(mischief.Do(Prank::Silence, bytes)), QByteArray());
}

TEST(Pranks, PiecesOfASplitAreNeverEmptyAndLoseNothing) {
    Mischief mischief(11);
    for (int size = 0; size < 200; ++size) {
        const QByteArray bytes(size, 'x');
        const PrankedPiece piece = mischief.Do(Prank::Split, bytes);
        EXPECT_EQ(Joined(piece), bytes);
        for (const QByteArray& part : piece.pieces)
            EXPECT_FALSE(part.isEmpty());
    }
}

TEST(Pranks, AreFoundByTheirNames) {
    for (int number = 0; number < kPrankCount; ++number) {
        Prank prank{};
        EXPECT_TRUE(FindPrank(NameOf(static_cast<Prank>(number)), prank));
        EXPECT_EQ(static_cast<int>(prank), number);
    }
    Prank prank{};
    EXPECT_FALSE(FindPrank(QStringLiteral("lie"), prank));
}
