#include "TimeVocabulary.h"

namespace {

struct ConversionRow {
    std::int32_t type, value, targetType, converted;
    const char* text;
};

constexpr ConversionRow kConversions[] = {
    {kFilm, 24, kVideo25, 25, "00:00:01/00"},
    {kFilm, 12, kVideo30, 15, "00:00:00/15"},
    {kFilm, 36, kHundredths, 150, "00:00:01/50"},
    {kFilm, 1, kMilliseconds, 40, "00:00:00/040"},
    {kVideo25, 90000, kFilm, 86400, "01:00:00/00"},
    {kVideo25, 1, kHundredths, 4, "00:00:00/04"},
    {kVideo25, -25, kVideo30, -30, "-00:00:01/00"},
    {kVideo30, 1802, kDropFrame, 1800, "00:01:00/02"},
    {kDropFrame, 1800, kVideo30, 1802, "00:01:00/02"},
    {kDropFrame, 1800, kHundredths, 6007, "00:01:00/07"},
    {kDropFrame, 1800, kMilliseconds, 60070, "00:01:00/070"},
    {kHundredths, 150, kFilm, 36, "00:00:01/12"},
    {kHundredths, 150, kVideo25, 37, "00:00:01/12"},
    {kHundredths, 150, kVideo30, 45, "00:00:01/15"},
    {kHundredths, 6007, kDropFrame, 1800, "00:01:00/02"},
    {kHundredths, 150, kMilliseconds, 1500, "00:00:01/500"},
    {kMilliseconds, 1999, kHundredths, 199, "00:00:01/99"},
    {kMilliseconds, 1500, kFilm, 36, "00:00:01/12"},
    {kMilliseconds, -1500, kVideo25, -37, "-00:00:01/12"},
    {kHundredths, 24 * 360000, kVideo25, 24 * 90000, "24:00:00/00"},
};

} // namespace

TEST(MTimeConversion, GivesTextValueAndFramesInTheTargetType) {
    for (const ConversionRow& row : kConversions) {
        MTime time = Converting(row.value, row.type, row.targetType);
        EXPECT_STREQ(time.GetConvertedText(), row.text) << row.type << " to " << row.targetType;
        EXPECT_EQ(time.GetConvertedValue(), row.converted) << row.type << " to " << row.targetType;
        EXPECT_EQ(time.GetConvertedFrames(),
                  std::stoi(std::string(row.text).substr(std::string(row.text).find('/') + 1)));
        EXPECT_EQ(time.GetValue(), row.value);
    }
}

TEST(MTimeConversion, GivesTheValueItselfInItsOwnType) {
    for (const std::int32_t type : {0, 1, 2, 3, 4, 5, 6, -1})
        for (const std::int32_t value : {0, 3598, 1234567, kSmallest, kLargest})
            EXPECT_EQ(Converting(value, type, type).GetConvertedValue(), value);
}

TEST(MTimeConversion, MeansItThatMillisecondsLoseTheirLastDigitInTheTextOfTheirOwnType) {
    MTime time = Converting(1239, kMilliseconds, kMilliseconds);
    EXPECT_STREQ(time.GetConvertedText(), "00:00:01/230");
    EXPECT_EQ(time.GetConvertedFrames(), 230);
    EXPECT_EQ(time.GetConvertedValue(), 1239);
}

TEST(MTimeConversion, MeansItThatFrom24HoursOnMillisecondsEndAt99AndHoursHaveTwoDigits) {
    EXPECT_EQ(Converting(24 * 360000 + 50, kHundredths, kMilliseconds).GetConvertedValue(), 24 * 3600000 + 99);
    MTime time = Converting(124 * 360000, kHundredths, kVideo25);
    EXPECT_STREQ(time.GetConvertedText(), "124:00:00/00");
    EXPECT_EQ(time.GetConvertedValue(), 24 * 90000);
}

TEST(MTimeConversion, MeansItThatALabelWhichDropFrameLeavesOutBecomesAnEarlierOne) {
    MTime time = Converting(1800, kVideo30, kDropFrame);
    EXPECT_STREQ(time.GetConvertedText(), "00:00:59/28");
    EXPECT_EQ(time.GetConvertedValue(), 1798);
}

TEST(MTimeConversion, GivesZeroWhenEitherTypeIsUnknown) {
    for (const std::int32_t unknown : {6, 100, kLargest, -1, kSmallest})
        for (std::int32_t known = 0; known <= kMilliseconds; ++known) {
            EXPECT_STREQ(Converting(5000, known, unknown).GetConvertedText(), "00:00:00/00");
            EXPECT_STREQ(Converting(5000, unknown, known).GetConvertedText(), "00:00:00/00");
            EXPECT_EQ(Converting(5000, unknown, known).GetConvertedValue(), 0);
            EXPECT_EQ(Converting(5000, known, unknown).GetConvertedFrames(), 0);
        }
}

TEST(MTimeConversion, WritesExtremeCountsWithinItsBuffer) {
    EXPECT_STREQ(Converting(kSmallest, kFilm, kVideo30).GetConvertedText(), "-24855:08:05/10");
    EXPECT_STREQ(Converting(kLargest, kFilm, kMilliseconds).GetConvertedText(), "24855:08:05/290");
    EXPECT_STREQ(Converting(kSmallest, kFilm, kMilliseconds).GetConvertedText(), "-24855:08:05/33")
        << "the last digit does not fit";
    for (std::int32_t type = 0; type <= kMilliseconds; ++type)
        for (std::int32_t target = 0; target <= kMilliseconds; ++target) {
            EXPECT_LE(std::string(Converting(kSmallest, type, target).GetConvertedText()).size(), 15U);
            EXPECT_GE(Converting(kLargest, type, target).GetConvertedValue(), 0);
        }
}
