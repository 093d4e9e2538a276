#include "LevelsText.h"

#include <gtest/gtest.h>

using namespace stagehost;

TEST(LevelsText, NamesChannelsFromOneAndRangesOnce) {
    DmxFrame frame;
    EXPECT_EQ(LevelsText(frame), "");
    frame.levels[0] = 255;
    frame.levels[6] = frame.levels[7] = frame.levels[8] = 128;
    frame.levels[511] = 1;
    EXPECT_EQ(LevelsText(frame), "1=255 7-9=128 512=1");
}

TEST(LevelsText, IsReadBack) {
    DmxFrame frame;
    ASSERT_TRUE(ReadLevels(" 1=255  7-9=128 512=1 ", frame));
    EXPECT_EQ(LevelsText(frame), "1=255 7-9=128 512=1");
    ASSERT_TRUE(ReadLevels("", frame));
    EXPECT_EQ(LevelsText(frame), "");
}

TEST(LevelsText, WhatIsNoneLeavesTheFrame) {
    DmxFrame frame;
    ASSERT_TRUE(ReadLevels("1=5", frame));
    for (const char* bad :
         {"0=1", "513=1", "1=256", "1=-1", "9-7=1", "1", "1=", "=1", "a=1", "1=1x", "1-600=2", "1=1,2=2"})
        EXPECT_FALSE(ReadLevels(bad, frame)) << bad;
    EXPECT_EQ(LevelsText(frame), "1=5");
}
