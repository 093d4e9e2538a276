#include "DatagramParts.h"

#include <climits>

#include <gtest/gtest.h>

namespace {

using Texts = std::vector<std::string>;

TEST(BindAddresses, AreSplitAtSemicolons) {
    EXPECT_EQ(BindAddresses("127.0.0.1;127.0.0.2"), (Texts{"127.0.0.1", "127.0.0.2"}));
    EXPECT_EQ(BindAddresses("127.0.0.1"), Texts{"127.0.0.1"});
}

TEST(BindAddresses, OfNothingAreNone) {
    EXPECT_EQ(BindAddresses(""), Texts{});
    EXPECT_EQ(BindAddresses(";;"), Texts{});
}

TEST(BindAddresses, AreSixteenAtMost) {
    std::string text;
    for (int i = 0; i < 20; ++i)
        text += std::to_string(i) + ";";
    const Texts addresses = BindAddresses(text.c_str());
    ASSERT_EQ(addresses.size(), 16U);
    EXPECT_EQ(addresses.back(), "15");
}

TEST(BindAddresses, OfTwoHundredAndFiftySixCharactersAreDroppedAndDoNotCount) {
    const std::string kept(255, 'a');
    const std::string dropped(256, 'b');
    std::string text = dropped + ";" + kept;
    for (int i = 1; i < 16; ++i)
        text += ";" + dropped + ";" + std::to_string(i);
    const Texts addresses = BindAddresses(text.c_str());
    ASSERT_EQ(addresses.size(), 16U);
    EXPECT_EQ(addresses.front(), kept);
    EXPECT_EQ(addresses.back(), "15");
}

struct PartRow {
    int size, offset, length, partOffset, partLength;
};

TEST(PartInside, LiesInsideTheBlock) {
    constexpr PartRow kRows[] = {
        {3, 0, 3, 0, 3}, {3, 1, 5, 1, 2}, {3, -4, 2, 0, 2},           {3, 2, -1, 2, 0},
        {3, 3, 1, 3, 0}, {3, 4, 1, 3, 0}, {3, 1, INT_MAX, 1, 2},      {3, INT_MAX, INT_MAX, 3, 0},
        {0, 0, 4, 0, 0}, {0, 5, 4, 0, 0}, {3, INT_MIN, INT_MIN, 0, 0}};
    for (const PartRow& row : kRows) {
        const DatagramPart part = PartInside(row.size, row.offset, row.length);
        EXPECT_EQ(part.offset, row.partOffset) << row.size << " " << row.offset << " " << row.length;
        EXPECT_EQ(part.length, row.partLength) << row.size << " " << row.offset << " " << row.length;
    }
}

} // namespace
