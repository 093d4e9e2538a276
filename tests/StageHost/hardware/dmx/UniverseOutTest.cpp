#include "UniverseOut.h"

#include <gtest/gtest.h>

using namespace stagehost;

namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

constexpr OutRules kSacn{44, false, true, kSacnEnds};
constexpr OutRules kArtNet{44, false, false, 0};
constexpr nanoseconds kPeriod = nanoseconds(1000000000 / 44);

class SendingAUniverse : public testing::Test {
protected:
    void Use(const OutRules& rules) { out.emplace(rules); }

    bool Write(std::initializer_list<int> levels, std::size_t start = 0) {
        const std::vector<std::uint8_t> bytes(levels.begin(), levels.end());
        return out->Write(bytes.data(), start, bytes.size(), now);
    }

    /// Lets the time pass and takes what leaves, each frame when it is due.
    std::vector<Departure> Pass(nanoseconds time) {
        std::vector<Departure> departures;
        const DmxTime end = now + time;
        while (out->NextDue() && *out->NextDue() <= end) {
            now = std::max(now, *out->NextDue());
            departures.push_back(*out->TakeDue(now));
        }
        now = end;
        return departures;
    }

    std::optional<UniverseOut> out{kSacn};
    DmxTime now{std::chrono::seconds(1000)};
};

} // namespace

TEST_F(SendingAUniverse, NothingLeavesBeforeItIsOpen) {
    Write({1, 2, 3});
    EXPECT_FALSE(out->NextDue().has_value());
    EXPECT_FALSE(out->TakeDue(now).has_value());
}

TEST_F(SendingAUniverse, AllChannelsLeaveAtOnceWhenItIsOpened) {
    Write({1, 2, 3});
    out->Open(now);
    const auto departure = out->TakeDue(now);
    ASSERT_TRUE(departure);
    EXPECT_EQ(departure->frame.count, kUniverseSize);
    EXPECT_EQ(departure->frame.levels[2], 3);
    EXPECT_FALSE(departure->terminated);
}

TEST_F(SendingAUniverse, WhatStandsLeavesThreeTimesAndThenEachNineHundredMilliseconds) {
    out->Open(now);
    const auto departures = Pass(milliseconds(4000));
    ASSERT_EQ(departures.size(), 3u + 4u);
    EXPECT_EQ(departures[1].due - departures[0].due, kPeriod);
    EXPECT_EQ(departures[2].due - departures[1].due, kPeriod);
    EXPECT_EQ(departures[3].due - departures[2].due, milliseconds(900));
    EXPECT_EQ(departures[6].due - departures[5].due, milliseconds(900));
}

TEST_F(SendingAUniverse, AChangeLeavesAtOnceWhenTheLastFrameIsLongEnoughAgo) {
    out->Open(now);
    Pass(milliseconds(500));
    Write({9});
    EXPECT_EQ(*out->NextDue(), now);
    EXPECT_EQ(Pass(milliseconds(100)).size(), 3u);
}

TEST_F(SendingAUniverse, ManyChangesLeaveFortyFourTimesASecondWithTheLatestLevels) {
    out->Open(now);
    Pass(milliseconds(500));
    std::vector<Departure> departures;
    for (int ms = 0; ms < 1000; ++ms) {
        Write({ms & 0xFF, ms >> 8});
        for (auto& departure : Pass(milliseconds(1)))
            departures.push_back(departure);
    }
    EXPECT_NEAR(departures.size(), 44u, 1);
    for (std::size_t index = 1; index < departures.size(); ++index)
        EXPECT_GE(departures[index].due - departures[index - 1].due, kPeriod);
    Pass(milliseconds(100));
    EXPECT_EQ(out->Levels().levels[0], 999 & 0xFF);
}

TEST_F(SendingAUniverse, LevelsThatStandAlreadyAreNoChange) {
    out->Open(now);
    Write({5});
    Pass(milliseconds(500));
    Write({5});
    EXPECT_TRUE(Pass(milliseconds(100)).empty());
}

TEST_F(SendingAUniverse, AContinuousOneKeepsTheRate) {
    Use({44, true, true, kSacnEnds});
    out->Open(now);
    EXPECT_EQ(Pass(std::chrono::seconds(10)).size(), 441u);
}

TEST_F(SendingAUniverse, ALateFrameDoesNotDelayTheNext) {
    Use({40, true, true, 0});
    out->Open(now);
    out->TakeDue(now + milliseconds(10));
    EXPECT_EQ(*out->NextDue(), now + milliseconds(25));
}

TEST_F(SendingAUniverse, AfterALongPauseNothingIsMadeUpFor) {
    Use({40, true, true, 0});
    out->Open(now);
    out->TakeDue(now);
    out->TakeDue(now + milliseconds(5000));
    EXPECT_EQ(*out->NextDue(), now + milliseconds(5025));
}

TEST_F(SendingAUniverse, ThreeTerminatedFramesTellTheEnd) {
    out->Open(now);
    Pass(milliseconds(500));
    out->Close(now);
    const auto departures = Pass(milliseconds(5000));
    ASSERT_EQ(departures.size(), 3u);
    for (const auto& departure : departures)
        EXPECT_TRUE(departure.terminated);
    EXPECT_FALSE(out->NextDue().has_value());
}

TEST_F(SendingAUniverse, ArtNetHasNoWordForTheEnd) {
    Use(kArtNet);
    out->Open(now);
    Pass(milliseconds(500));
    out->Close(now);
    EXPECT_FALSE(out->NextDue().has_value());
}

TEST_F(SendingAUniverse, OpenedAgainItGoesOnWithItsLevelsAndNumbers) {
    out->Open(now);
    Write({7});
    const auto before = Pass(milliseconds(100)).back();
    out->Close(now);
    out->Open(now);
    const auto after = Pass(milliseconds(100)).front();
    EXPECT_FALSE(after.terminated);
    EXPECT_EQ(after.frame.levels[0], 7);
    EXPECT_EQ(after.sequence, before.sequence + 1);
}

TEST_F(SendingAUniverse, SequencesCountFromZeroAndAroundForSacn) {
    Use({44, true, true, 0});
    out->Open(now);
    const auto departures = Pass(std::chrono::seconds(6));
    EXPECT_EQ(departures.at(0).sequence, 0);
    EXPECT_EQ(departures.at(255).sequence, 255);
    EXPECT_EQ(departures.at(256).sequence, 0);
}

TEST_F(SendingAUniverse, SequencesLeaveOutZeroForArtNet) {
    Use({44, true, false, 0});
    out->Open(now);
    const auto departures = Pass(std::chrono::seconds(6));
    EXPECT_EQ(departures.at(0).sequence, 1);
    EXPECT_EQ(departures.at(254).sequence, 255);
    EXPECT_EQ(departures.at(255).sequence, 1);
}

TEST_F(SendingAUniverse, WhatLiesBeyondTheUniverseIsCut) {
    EXPECT_TRUE(Write({1, 2, 3}, 510));
    EXPECT_EQ(out->Levels().levels[510], 1);
    EXPECT_EQ(out->Levels().levels[511], 2);
    EXPECT_FALSE(Write({1}, 512));
    EXPECT_TRUE(Write({}, 5));
}
