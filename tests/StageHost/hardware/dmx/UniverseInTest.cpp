#include "UniverseIn.h"

#include <gtest/gtest.h>

using namespace stagehost;

namespace {

using std::chrono::milliseconds;

class HearingAUniverse : public testing::Test {
protected:
    /// A packet of a source whose first channels have these levels.
    UniverseIn::Outcome Hear(char source, std::initializer_list<int> levels, int priority = 100) {
        heard.source = {static_cast<std::uint8_t>(source)};
        heard.name = source;
        heard.priority = static_cast<std::uint8_t>(priority);
        heard.frame = {};
        for (const int level : levels)
            heard.frame.levels[heard.frame.count++] = static_cast<std::uint8_t>(level);
        return universe.Take(heard, now);
    }

    UniverseIn::Outcome HearSequence(char source, int sequence) {
        heard.sequence = static_cast<std::uint8_t>(sequence);
        return Hear(source, {sequence & 0xFF});
    }

    std::vector<std::string> Pass(int ms) {
        now += milliseconds(ms);
        changed = false;
        return universe.Expire(now, changed);
    }

    std::vector<int> Levels() const {
        const auto& frame = universe.Merged();
        return {frame.levels.begin(), frame.levels.begin() + static_cast<std::ptrdiff_t>(frame.count)};
    }

    UniverseIn universe{kSacnMerge};
    HeardFrame heard;
    DmxTime now;
    bool changed = false;
};

using List = std::vector<int>;
using Names = std::vector<std::string>;

} // namespace

TEST_F(HearingAUniverse, OneSourceIsTakenAsItIs) {
    const auto outcome = Hear('a', {1, 2, 3});
    EXPECT_EQ(outcome.refusal, Refusal::None);
    EXPECT_TRUE(outcome.changed);
    EXPECT_TRUE(outcome.newSource);
    EXPECT_EQ(Levels(), (List{1, 2, 3}));
}

TEST_F(HearingAUniverse, TheSameLevelsAgainChangeNothing) {
    Hear('a', {1, 2});
    EXPECT_FALSE(Hear('a', {1, 2}).changed);
    EXPECT_TRUE(Hear('a', {1, 3}).changed);
}

TEST_F(HearingAUniverse, AFirstFrameIsAChangeEvenIfAllIsDark) {
    EXPECT_TRUE(Hear('a', {}).changed);
}

TEST_F(HearingAUniverse, TheHighestValueOfEachChannelTakesPrecedenceAmongEqualPriorities) {
    Hear('a', {10, 200});
    Hear('b', {20, 100, 7});
    EXPECT_EQ(Levels(), (List{20, 200, 7}));
    Hear('b', {0, 0, 0});
    EXPECT_EQ(Levels(), (List{10, 200, 0}));
}

TEST_F(HearingAUniverse, TheHighestPriorityWinsWhateverTheLevels) {
    Hear('a', {255, 255}, 100);
    Hear('b', {1, 2}, 101);
    EXPECT_EQ(Levels(), (List{1, 2}));
    EXPECT_FALSE(Hear('a', {254}, 100).changed);
    Hear('b', {1, 2}, 99);
    EXPECT_EQ(Levels(), (List{254}));
}

TEST_F(HearingAUniverse, ASourceThatFallsSilentIsLetGoAfterTwoAndAHalfSeconds) {
    Hear('a', {50}, 200);
    Hear('b', {10}, 100);
    now += milliseconds(1000);
    Hear('b', {10}, 100);
    EXPECT_EQ(Pass(1499), Names{});
    EXPECT_EQ(Pass(1), Names{"a"});
    EXPECT_TRUE(changed);
    EXPECT_EQ(Levels(), List{10});
}

TEST_F(HearingAUniverse, LevelsStayWhenTheLastSourceIsLetGo) {
    Hear('a', {50, 60});
    EXPECT_EQ(Pass(2500), Names{"a"});
    EXPECT_FALSE(changed);
    EXPECT_EQ(Levels(), (List{50, 60}));
    EXPECT_FALSE(universe.NextExpiry().has_value());
}

TEST_F(HearingAUniverse, TheNextExpiryIsThatOfTheSourceThatIsSilentLongest) {
    Hear('a', {1});
    now += milliseconds(400);
    Hear('b', {1});
    EXPECT_EQ(*universe.NextExpiry(), now + milliseconds(2100));
}

TEST_F(HearingAUniverse, ASourceThatEndsIsLetGoAtOnceAndItsLastLevelsAreNotUsed) {
    Hear('a', {50}, 200);
    Hear('b', {10});
    heard.terminated = true;
    EXPECT_TRUE(Hear('a', {99}, 200).changed);
    EXPECT_EQ(Levels(), List{10});
    EXPECT_FALSE(Hear('a', {99}, 200).changed); // each end is told three times
    EXPECT_EQ(universe.Sources().size(), 1u);
    Hear('b', {77});
    EXPECT_EQ(Levels(), List{10}); // the last one has gone: levels stay
}

TEST_F(HearingAUniverse, APreviewIsNoData) {
    Hear('a', {1});
    heard.preview = true;
    EXPECT_EQ(Hear('a', {2}).refusal, Refusal::Preview);
    EXPECT_EQ(Hear('b', {2}, 200).refusal, Refusal::Preview);
    EXPECT_EQ(Levels(), List{1});
    EXPECT_EQ(universe.Sources().size(), 1u);
}

TEST_F(HearingAUniverse, AnotherStartCodeIsNoDataButCounts) {
    HearSequence('a', 10);
    heard.startCode = 0xDD;
    EXPECT_EQ(HearSequence('a', 11).refusal, Refusal::OtherStartCode);
    EXPECT_EQ(Levels(), List{10});
    heard.startCode = 0;
    EXPECT_EQ(HearSequence('a', 11).refusal, Refusal::OldSequence);
}

TEST_F(HearingAUniverse, ASequenceUpToNineteenBehindIsOld) {
    HearSequence('a', 100);
    EXPECT_EQ(HearSequence('a', 100).refusal, Refusal::OldSequence);
    EXPECT_EQ(HearSequence('a', 99).refusal, Refusal::OldSequence);
    EXPECT_EQ(HearSequence('a', 81).refusal, Refusal::OldSequence);
    EXPECT_EQ(Levels(), List{100});
    EXPECT_EQ(HearSequence('a', 80).refusal, Refusal::None); // the sender has begun anew
    EXPECT_EQ(Levels(), List{80});
}

TEST_F(HearingAUniverse, ASequenceGoesOnBehindTheHighestNumber) {
    HearSequence('a', 255);
    EXPECT_EQ(HearSequence('a', 0).refusal, Refusal::None);
    EXPECT_EQ(HearSequence('a', 254).refusal, Refusal::OldSequence);
    EXPECT_EQ(HearSequence('a', 127).refusal, Refusal::None);
}

TEST_F(HearingAUniverse, SequencesAreCountedForEachSource) {
    HearSequence('a', 100);
    EXPECT_EQ(HearSequence('b', 99).refusal, Refusal::None);
}

TEST_F(HearingAUniverse, ASenderThatDoesNotCountIsNeverOld) {
    Hear('a', {1});
    EXPECT_EQ(Hear('a', {2}).refusal, Refusal::None);
}

TEST_F(HearingAUniverse, MoreSourcesThanCanBeMergedAreRefused) {
    for (int source = 1; source <= 32; ++source)
        EXPECT_EQ(Hear(static_cast<char>(source), {source}).refusal, Refusal::None);
    EXPECT_EQ(Hear(33, {255}).refusal, Refusal::TooManySources);
    EXPECT_EQ(Levels(), List{32});
    Pass(2500);
    EXPECT_EQ(Hear(33, {255}).refusal, Refusal::None);
}

TEST(HearingArtNet, MergesTwoSourcesAndKeepsThemForTenSeconds) {
    UniverseIn universe(kArtNetMerge);
    HeardFrame heard;
    heard.frame.count = 1;
    DmxTime now;
    const auto hear = [&](int source, int level) {
        heard.source = {static_cast<std::uint8_t>(source)};
        heard.frame.levels[0] = static_cast<std::uint8_t>(level);
        return universe.Take(heard, now).refusal;
    };
    EXPECT_EQ(hear(1, 50), Refusal::None);
    EXPECT_EQ(hear(2, 80), Refusal::None);
    EXPECT_EQ(hear(3, 90), Refusal::TooManySources);
    EXPECT_EQ(universe.Merged().levels[0], 80);
    bool changed = false;
    now += milliseconds(4000); // when a quiet source speaks again
    EXPECT_TRUE(universe.Expire(now, changed).empty());
    hear(1, 50);
    now += milliseconds(6000);
    EXPECT_EQ(universe.Expire(now, changed).size(), 1u);
    EXPECT_TRUE(changed);
    EXPECT_EQ(universe.Merged().levels[0], 50);
    EXPECT_EQ(hear(3, 90), Refusal::None);
}
