#include "Framing.h"

#include <gtest/gtest.h>

using namespace stagehost;

namespace {

/// The frames of some pieces, and "!" for each complaint.
std::vector<std::string> Frames(const FramingRule& rule, const std::vector<std::string>& pieces) {
    Framing framing(rule);
    std::vector<std::string> frames;
    for (const std::string& piece : pieces) {
        framing.Take(QByteArray::fromStdString(piece));
        QString problem;
        for (auto frame = framing.Next(&problem); frame; frame = framing.Next(&problem))
            frames.push_back(frame->toStdString());
        if (!problem.isEmpty())
            frames.push_back("!");
    }
    return frames;
}

using List = std::vector<std::string>;

FramingRule Delimited(const char* delimiter, const char* start = "") {
    FramingRule rule;
    rule.kind = FramingRule::Kind::Delimited;
    rule.delimiter = delimiter;
    rule.start = start;
    rule.most = 10;
    return rule;
}

FramingRule Prefixed(int bytes) {
    FramingRule rule;
    rule.kind = FramingRule::Kind::Prefixed;
    rule.prefix = bytes;
    rule.most = 10;
    return rule;
}

} // namespace

TEST(Framing, PiecesComeAsTheyAreWithoutARule) {
    EXPECT_EQ(Frames({}, {"ab", "", "c"}), (List{"ab", "c"}));
}

TEST(Framing, LinesAreJoinedAndParted) {
    EXPECT_EQ(Frames(Delimited("\r\n"), {"a\r", "\nb\r\n\r\nc"}), (List{"a", "b", ""}));
}

TEST(Framing, WhatStandsInFrontOfAStartIsNoPartOfTheFrame) {
    EXPECT_EQ(Frames(Delimited("\x03", "\x02"), {"xx\x02oops\x02IN?\x03", "\x02OK\x03"}), (List{"IN?", "OK"}));
}

TEST(Framing, WhatHasNoEndIsThrownAwayAndTold) {
    EXPECT_EQ(Frames(Delimited("\r"), {"0123456789", "0", "a\r"}), (List{"!", "a"}));
}

TEST(Framing, FramesOfAFixedLength) {
    FramingRule rule;
    rule.kind = FramingRule::Kind::Fixed;
    rule.length = 3;
    EXPECT_EQ(Frames(rule, {"ab", "cdefg", "hi"}), (List{"abc", "def", "ghi"}));
}

TEST(Framing, ALengthInFrontSaysHowMuchFollows) {
    EXPECT_EQ(Frames(Prefixed(1), {std::string("\x02"), std::string("ab\x00\x01z", 5)}), (List{"ab", "", "z"}));
    EXPECT_EQ(Frames(Prefixed(2), {std::string("\x00\x02xy", 4)}), List{"xy"});
    FramingRule little = Prefixed(4);
    little.isLittle = true;
    EXPECT_EQ(Frames(little, {std::string("\x02\x00\x00\x00xy", 6)}), List{"xy"});
}

TEST(Framing, ALengthMayCountItself) {
    FramingRule rule = Prefixed(2);
    rule.countsPrefix = true;
    EXPECT_EQ(Frames(rule, {std::string("\x00\x04xy\x00\x03z", 7)}), (List{"xy", "z"}));
    EXPECT_EQ(Frames(rule, {std::string("\x00\x00\x00\x03z", 5)}), (List{"", "z"})) << "one that is impossible";
}

TEST(Framing, ALengthThatIsTooGreatIsThrownAwayOnceMoreHasComeThanAFrameHolds) {
    EXPECT_EQ(Frames(Prefixed(4), {std::string("\xff\xff\xff\xff", 4), "0123456789"}), List{"!"});
}

TEST(Framing, AFunctionSaysHowLongTheFirstFrameIs) {
    FramingRule rule;
    rule.kind = FramingRule::Kind::Own;
    rule.own = [](const QByteArray& bytes) { return bytes.at(0) - '0'; };
    EXPECT_EQ(Frames(rule, {"2a3b", "c1", "0"}), (List{"2a", "3bc", "1"}));
}
