#include "ChannelRamp.h"

#include <gtest/gtest.h>

using namespace stagehost;
using std::chrono::milliseconds;

TEST(ChannelRamp, MovesEvenlyAndEndsExactly) {
    const RampClock::time_point begin(std::chrono::seconds(50));
    const ChannelRamp ramp{100, 0, begin, milliseconds(1000)};
    EXPECT_EQ(ramp.ValueAt(begin), 100);
    EXPECT_EQ(ramp.ValueAt(begin + milliseconds(250)), 75);
    EXPECT_EQ(ramp.ValueAt(begin + milliseconds(999)), 0);
    EXPECT_FALSE(ramp.IsOver(begin + milliseconds(999)));
    EXPECT_EQ(ramp.ValueAt(begin + milliseconds(5000)), 0);
    EXPECT_TRUE(ramp.IsOver(begin + milliseconds(1000)));
}

TEST(ChannelRamp, ReachesOverTheWholeRange) {
    const RampClock::time_point begin;
    constexpr std::int32_t kLow = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t kHigh = std::numeric_limits<std::int32_t>::max();
    const ChannelRamp ramp{kLow, kHigh, begin, milliseconds(2)};
    EXPECT_NEAR(ramp.ValueAt(begin + milliseconds(1)), 0, 1);
    EXPECT_EQ(ramp.ValueAt(begin + milliseconds(2)), kHigh);
}

TEST(ChannelRamp, OfNoTimeIsOverAtOnce) {
    const RampClock::time_point begin;
    EXPECT_EQ((ChannelRamp{1, 9, begin, milliseconds(0)}.ValueAt(begin)), 9);
}
