#include <array>

#include "TimeVocabulary.h"

namespace {

struct TimeTextRow {
    const char* says;
    const char* text;
    std::int32_t type;
    std::int32_t value;
};

constexpr TimeTextRow kTimeTexts[] = {
    {"an hour of 25 frames", "01:00:00/00", kVideo25, 90000},
    {"an hour of hundredths", "01:00:00/00", kHundredths, 360000},
    {"an hour of 24 frames", "01:00:00/00", kFilm, 86400},
    {"an hour of 30 frames", "01:00:00/00", kVideo30, 108000},
    {"an hour of milliseconds", "01:00:00/000", kMilliseconds, 3600000},
    {"every field", "01:02:03/04", kVideo25, 90000 + 2 * 1500 + 3 * 25 + 4},
    {"fields without leading zeros", "1:2:3/4", kVideo25, 90000 + 2 * 1500 + 3 * 25 + 4},
    {"three digits of milliseconds", "00:00:01/234", kMilliseconds, 1234},
    {"the first label behind a dropped one", "00:01:00/02", kDropFrame, 1800},
    {"a negative text", "-00:00:01/00", kHundredths, -100},
    {"a plus", "+00:00:01/00", kHundredths, 100},
    {"a negative drop frame text", "-00:01:00/02", kDropFrame, -1800},
    {"frames equal to the rate", "00:00:00/25", kVideo25, 25},
    {"frames equal to the rate, a thousand", "00:00:00/1000", kMilliseconds, 1000},
    {"frames above the rate go through the free form and wrap", "00:00:00/26", kVideo25, 1},
    {"frames above the rate may wrap more than once", "00:00:00/99", kFilm, 3},
    {"24 hours go through the free form", "24:00:00/00", kHundredths, 24 * 360000},
    {"99 hours go through the free form", "99:00:00/00", kVideo30, 99 * 108000},
    {"60 minutes go through the free form", "00:60:00/00", kVideo25, 90000},
    {"60 seconds go through the free form", "00:00:60/00", kVideo25, 1500},
    {"only six digits of the free form count", "123:00:00/00", kHundredths, 23 * 360000},
    {"the empty text is zero", "", kHundredths, 0},
    {"seconds alone", "12", kHundredths, 1200},
    {"minutes and seconds without a colon", "112", kHundredths, 7200},
    {"seconds and frames", "1.5", kHundredths, 105},
    {"a slash does what a point does", "1/5", kHundredths, 105},
    {"a colon in the middle counts for nothing", "1:2", kHundredths, 1200},
    {"a colon at the end is minutes", "12:", kHundredths, 12 * 6000},
    {"a colon at the end before the frames is minutes", "12:.5", kHundredths, 12 * 6000 + 5},
    {"two colons at the end are hours", "1::", kHundredths, 360000},
    {"a pair of colons skips two places", "1::02", kHundredths, 360000 + 200},
    {"a pair skips two places, not to the next field", "1::2", kHundredths, 60000 + 200},
    {"a colon in front counts for nothing", ":30", kHundredths, 3000},
    {"a colon alone is zero", ":", kHundredths, 0},
    {"a point alone is zero", ".", kHundredths, 0},
    {"frames alone", "/7", kVideo25, 7},
    {"a seventh digit does not count", "9000001", kVideo25, 25},
    {"behind the second separator nothing counts", "1/2/3", kVideo25, 27},
    {"frames that begin with a colon are zero", "1/:3", kVideo25, 25},
    {"100 frames are clamped before they wrap", "0.100", kVideo30, 9},
    {"a typed time in drop frame", "100.02", kDropFrame, 1800},
    {"a negative typed time", "-1.5", kHundredths, -105},
    {"blanks in front of the fields of the full form", " 1: 2:\t3/ 4", kHundredths, 360000 + 12000 + 304},
    {"text behind the full form", "0:0:1/0abc", kHundredths, 100},
    {"signs inside the fields of the full form", "0:0:+2/-1", kHundredths, 199},
    {"characters behind the fifteenth", "000000000000012x", kHundredths, 1200},
    {"characters behind the fourteenth after a sign", "-00000000000012x", kHundredths, -1200},
    {"the digit that the length limit cuts off", "0000000000000123", kHundredths, 1200},
};

constexpr const char* kUnreadable[] = {
    "-",    "+",   "--1",  "-+1",  "+-1",         "abc",          "1a",          " ",        " 12",      "12 ",
    "1,5",  "1;2", "1-2",  "\xB2", "0:0:0/-",     "x0:0:1/0",     "0:0:1 /0",    "\xFF\xFE", "\xD9\xA1", "1\n",
    "0x10", "1e3", "1/+2", "1:-2", "00:00:00-00", "99:00:00/00x", "-99:00:00/0x"};

struct WrittenTimeRow {
    std::int32_t type, value;
    const char* text;
};

constexpr WrittenTimeRow kWrittenTimes[] = {
    {kFilm, 86400 + 1440 + 24 + 23, "01:01:01/23"},
    {kVideo25, 90000, "01:00:00/00"},
    {kVideo30, 29, "00:00:00/29"},
    {kDropFrame, 1799, "00:00:59/29"},
    {kDropFrame, 1800, "00:01:00/02"},
    {kDropFrame, -1800, "-00:01:00/02"},
    {kHundredths, -100, "-00:00:01/00"},
    {kHundredths, 0, "00:00:00/00"},
    {kHundredths, 25 * 360000, "25:00:00/00"},
    {kHundredths, 100 * 360000, "100:00:00/00"},
    {kMilliseconds, 1, "00:00:00/001"},
    {kMilliseconds, -1234, "-00:00:01/234"},
    {kFilm, kSmallest, "-24855:08:05/08"},
    {kDropFrame, kSmallest, "-19903:59:31/02"},
    {kHundredths, kSmallest, "-5965:13:56/48"},
    {kMilliseconds, kLargest, "596:31:23/647"},
};

} // namespace

TEST(TimeText, ReadsWhatPeopleWrite) {
    for (const TimeTextRow& row : kTimeTexts)
        EXPECT_EQ(ValueOf(row.text, row.type), row.value) << row.says << ": " << row.text;
}

TEST(TimeText, LeavesTheValueWhenATextCannotBeRead) {
    EXPECT_EQ(ValueOf(nullptr, kHundredths), kStayed);
    for (const char* text : kUnreadable)
        for (std::int32_t type = 0; type <= kMilliseconds; ++type)
            EXPECT_EQ(ValueOf(text, type), kStayed) << text;
}

TEST(TimeText, MeansItThatMillisecondsOfTheFreeFormEndAt99) {
    EXPECT_EQ(ValueOf("1.5", kMilliseconds), 1005);
    EXPECT_EQ(ValueOf("1.500", kMilliseconds), 1099);
    EXPECT_EQ(ValueOf("24:00:00/500", kMilliseconds), 24 * 3600000 + 99);
}

TEST(TimeText, MeansItThatFullFormTakesNegativeFields) {
    EXPECT_EQ(ValueOf("1:-2:-3/-4", kHundredths), 360000 - 12000 - 300 - 4);
    EXPECT_EQ(ValueOf("0:0:-1/0", kDropFrame), -30);
}

TEST(TimeText, GivesTheNearestCountBeyond32Bits) {
    EXPECT_EQ(ValueOf("0:-99999999:0/0", kMilliseconds), kSmallest);
    EXPECT_EQ(ValueOf("0:0:0/-99999999", kMilliseconds), -99999999);
    EXPECT_EQ(ValueOf("-0:-99999999:0/", kHundredths), kStayed);
    EXPECT_EQ(ValueOf("-0:-9999999:0/0", kMilliseconds), kLargest);
    EXPECT_EQ(ValueOf("23:59:59/0", 1000000), kLargest);
    EXPECT_EQ(ValueOf("-23:59:59/0", 1000000), -kLargest);
    EXPECT_EQ(ValueOf("23:59:59/99", kLargest), kLargest);
}

TEST(TimeText, ReadsLongTextsByTheirFirstCharacters) {
    EXPECT_EQ(ValueOf(std::string(1000000, '1').c_str(), kHundredths), 11 * 360000 + 11 * 6000 + 1100);
    EXPECT_EQ(ValueOf(std::string(1000000, ':').c_str(), kHundredths), 0);
    EXPECT_EQ(ValueOf(std::string(1000000, '/').c_str(), kHundredths), 0);
    EXPECT_EQ(ValueOf(std::string(1000000, 'a').c_str(), kHundredths), kStayed);
}

TEST(TimeText, WritesEveryType) {
    for (const WrittenTimeRow& row : kWrittenTimes)
        EXPECT_EQ(TextOf(row.value, row.type), row.text);
}

TEST(TimeText, TakesATypeAbove5AsUnitsASecond) {
    EXPECT_EQ(TextOf(61 * 50 + 49, 50), "00:01:01/49");
    EXPECT_EQ(ValueOf("00:01:01/49", 50), 61 * 50 + 49);
    EXPECT_EQ(ValueOf("1.7", 6), 7) << "the frames wrap at six a second";
    EXPECT_EQ(TextOf(1005, 1000), "00:00:01/05");
}

TEST(TimeText, TakesATypeBelow0AsHundredths) {
    EXPECT_EQ(TextOf(12345, -1), TextOf(12345, kHundredths));
    EXPECT_EQ(ValueOf("1.5", kSmallest), 105);
}

TEST(TimeText, CutsATextThatDoesNotFitItsBuffer) {
    EXPECT_EQ(TextOf(kLargest, kLargest), "00:00:01/00");
    EXPECT_EQ(TextOf(kLargest - 1, kLargest), "00:00:00/214748");
    EXPECT_EQ(TextOf(kSmallest, 10000000), "-00:03:34/74836");
}
