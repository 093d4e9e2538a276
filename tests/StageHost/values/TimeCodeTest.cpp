#include "TimeCode.h"

#include <limits>

#include <gtest/gtest.h>

using namespace stagehost;

namespace {

struct Row {
    const char* sentence;
    const char* text;
    std::int32_t type;
    std::int32_t units;
    const char* written;
};

constexpr Row kRows[] = {
    {"24 frames", "01:00:00/00", 0, 86400, "01:00:00/00"},
    {"25 frames", "01:00:00/00", 1, 90000, "01:00:00/00"},
    {"30 frames", "01:00:00/00", 2, 108000, "01:00:00/00"},
    {"drop frame is counted as 30 frames", "01:00:00/00", 3, 108000, "01:00:00/00"},
    {"hundredths", "01:00:00/00", 4, 360000, "01:00:00/00"},
    {"milliseconds", "01:00:00/000", 5, 3600000, "01:00:00/000"},
    {"a point before the units", "00:00:01.07", 4, 107, "00:00:01/07"},
    {"a colon before the units", "00:00:01:07", 1, 32, "00:00:01/07"},
    {"no units", "00:01:00", 4, 6000, "00:01:00/00"},
    {"units equal to the rate", "00:00:00/25", 1, 25, "00:00:01/00"},
    {"a negative time", "-00:00:01/00", 4, -100, "-00:00:01/00"},
    {"hours that do not wrap", "100:00:00/00", 4, 36000000, "100:00:00/00"},
    {"short fields", "1:2:3", 4, 372300, "01:02:03/00"},
};

} // namespace

TEST(TimeCode, ReadsAndWritesEveryType) {
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.sentence);
        const auto units = ParseTimeCode(row.text, row.type);
        ASSERT_TRUE(units.has_value());
        EXPECT_EQ(*units, row.units);
        EXPECT_EQ(FormatTimeCode(*units, row.type), row.written);
    }
}

TEST(TimeCode, RefusesTextsOfAnotherForm) {
    for (const char* text : {"",
                             "-",
                             "--1:00:00",
                             "12",
                             "1:2",
                             "1:2:3:4:5",
                             "00:60:00",
                             "00:00:60",
                             "00:00:00/101",
                             "a:b:c",
                             "00:00:00/",
                             "00:00:",
                             ":::",
                             "00/00/00",
                             " 00:00:00",
                             "00:00:00 ",
                             "+00:00:01",
                             "00:-1:00",
                             "99999999999:00:00",
                             "596524:00:00",
                             "-596524:00:00"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(ParseTimeCode(text, 4).has_value());
    }
}

TEST(TimeCode, CountsTypesOutsideTheTableInHundredths) {
    EXPECT_EQ(TimeCodeRate(-1), 100);
    EXPECT_EQ(TimeCodeRate(6), 100);
}

TEST(TimeCode, WritesTheLargestTimes) {
    EXPECT_EQ(FormatTimeCode(std::numeric_limits<std::int32_t>::max(), 0), "24855:08:05/07");
    EXPECT_EQ(FormatTimeCode(std::numeric_limits<std::int32_t>::min(), 5), "-596:31:23/648");
}
