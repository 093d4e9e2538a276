#include <thread>
#include <type_traits>
#include <vector>

#include "TimeVocabulary.h"

static_assert(std::has_virtual_destructor_v<MTime>);
static_assert(!std::is_convertible_v<std::int32_t, MTime>);

namespace {

struct PartsRow {
    std::int32_t type, value, hours, minutes, seconds, frames;
};

constexpr PartsRow kParts[] = {
    {kFilm, 86400 * 3 + 1440 * 4 + 24 * 5 + 6, 3, 4, 5, 6},
    {kVideo25, 90000 * 3 + 1500 * 4 + 25 * 5 + 6, 3, 4, 5, 6},
    {kVideo30, 108000 * 3 + 1800 * 4 + 30 * 5 + 6, 3, 4, 5, 6},
    {kDropFrame, 1800, 0, 1, 0, 2},
    {kDropFrame, 17981, 0, 9, 59, 29},
    {kDropFrame, 17982, 0, 10, 0, 0},
    {kDropFrame, 18000, 0, 10, 0, 18},
    {kHundredths, 360000 * 30 + 6000 * 4 + 100 * 5 + 6, 30, 4, 5, 6},
    {kMilliseconds, 3600000 * 3 + 60000 * 4 + 1000 * 5 + 678, 3, 4, 5, 678},
    {6, 360000 + 6000 + 100 + 1, 1, 1, 1, 1},
    {-1, 360000 + 6000 + 100 + 1, 1, 1, 1, 1},
    {kLargest, 360000 + 6000 + 100 + 1, 1, 1, 1, 1},
    {kHundredths, -(360000 * 2 + 6000 + 100 + 1), 2, 1, 1, 1},
    {kFilm, kSmallest, 24855, 8, 5, 8},
};

} // namespace

TEST(MTime, BeginsAtZeroHundredths) {
    MTime time;
    EXPECT_EQ(time.GetValue(), 0);
    EXPECT_EQ(time.GetTargetType(), kHundredths);
    EXPECT_FALSE(time.SetType(kHundredths));
    EXPECT_STREQ(time.GetText(), "00:00:00/00");
    EXPECT_STREQ(MTime(100).GetText(), "00:00:01/00");
}

TEST(MTime, KeepsTheValueWhenTheTypeChanges) {
    MTime time(90000);
    EXPECT_TRUE(time.SetType(kVideo25));
    EXPECT_FALSE(time.SetType(kVideo25));
    EXPECT_EQ(time.GetValue(), 90000);
    EXPECT_STREQ(time.GetText(), "01:00:00/00");
}

TEST(MTime, TellsWhetherTheValueChanged) {
    MTime time;
    EXPECT_TRUE(time.SetValue(100));
    EXPECT_FALSE(time.SetValue(100));
    EXPECT_FALSE(time.SetFromText("1"));
    EXPECT_TRUE(time.SetFromText("2"));
    EXPECT_FALSE(time.SetFromText("not a time"));
    EXPECT_FALSE(time.SetFromText(nullptr));
    EXPECT_EQ(time.GetValue(), 200);
    EXPECT_TRUE(time.SetFromText(""));
    EXPECT_EQ(time.GetValue(), 0);
    EXPECT_TRUE(time.SetHMSF(0, 0, 1, 0));
    EXPECT_FALSE(time.SetHMSF(0, 0, 1, 0));
}

TEST(MTime, SplitsTheValueIntoItsParts) {
    for (const PartsRow& row : kParts) {
        const MTime time = TimeOf(row.value, row.type);
        EXPECT_EQ(time.GetHours(), row.hours) << row.type << ": " << row.value;
        EXPECT_EQ(time.GetMinutes(), row.minutes) << row.type << ": " << row.value;
        EXPECT_EQ(time.GetSeconds(), row.seconds) << row.type << ": " << row.value;
        EXPECT_EQ(time.GetFrames(), row.frames) << row.type << ": " << row.value;
    }
}

TEST(MTime, JoinsThePartsOfEveryType) {
    constexpr std::int32_t kUnits[] = {24, 25, 30, 30, 100, 1000};
    for (std::int32_t type = 0; type <= kMilliseconds; ++type) {
        MTime time = TimeOf(0, type);
        time.SetHMSF(2, 10, 4, 5);
        const std::int32_t dropped = type == kDropFrame ? (130 - 13) * 2 : 0;
        EXPECT_EQ(time.GetValue(), (2 * 3600 + 10 * 60 + 4) * kUnits[type] + 5 - dropped) << type;
    }
}

TEST(MTime, JoinsPartsOfDropFrameAsTheirTextIsRead) {
    MTime time = TimeOf(0, kDropFrame);
    time.SetHMSF(0, 1, 0, 2);
    EXPECT_EQ(time.GetValue(), 1800);
    EXPECT_EQ(time.GetFrames(), 2);
}

TEST(MTime, JoinsPartsOfUnknownTypesAsHundredths) {
    for (const std::int32_t type : {6, 7, 1000, kLargest, -1, kSmallest}) {
        MTime time = TimeOf(0, type);
        time.SetHMSF(1, 1, 1, 1);
        EXPECT_EQ(time.GetValue(), 366101) << type;
    }
}

TEST(MTime, AddsUpPartsBeyondTheirRanges) {
    MTime time;
    time.SetHMSF(0, 90, 90, 150);
    EXPECT_EQ(time.GetValue(), 90 * 6000 + 90 * 100 + 150);
    time.SetHMSF(1, -1, 0, -1);
    EXPECT_EQ(time.GetValue(), 360000 - 6000 - 1);
    for (std::int32_t type = -1; type <= 7; ++type) {
        MTime extreme = TimeOf(0, type);
        extreme.SetHMSF(kLargest, kLargest, kLargest, kLargest);
        EXPECT_EQ(extreme.GetValue(), kLargest);
        extreme.SetHMSF(kSmallest, kSmallest, kSmallest, kSmallest);
        EXPECT_EQ(extreme.GetValue(), kSmallest);
    }
}

TEST(MTime, CopiesTypeAndValueOnly) {
    MTime original = Converting(90000, kVideo25, kFilm);
    original.GetText();
    MTime copy(original);
    EXPECT_EQ(copy.GetTargetType(), kHundredths);
    EXPECT_STREQ(copy.GetText(), "01:00:00/00");

    MTime assigned = Converting(0, kVideo30, kMilliseconds);
    const char* text = assigned.GetText();
    assigned = original;
    EXPECT_EQ(assigned.GetTargetType(), kMilliseconds);
    EXPECT_STREQ(text, "00:00:00/00") << "the text is the object's own and is not copied";
    EXPECT_STREQ(assigned.GetText(), "01:00:00/00");
}

TEST(MTime, KeepsItsTwoTextsApart) {
    MTime time = Converting(100, kHundredths, kMilliseconds);
    const char* text = time.GetText();
    const char* converted = time.GetConvertedText();
    EXPECT_STREQ(text, "00:00:01/00");
    EXPECT_STREQ(converted, "00:00:01/000");
}

TEST(MTime, WorksOnAnyThreadWithAnObjectOfItsOwn) {
    std::vector<std::thread> threads;
    std::array<std::int32_t, 4> values{};
    for (std::size_t i = 0; i < values.size(); ++i)
        threads.emplace_back([i, &values] {
            MTime time;
            for (std::int32_t n = 0; n <= 1000; ++n)
                time.SetFromText(TextOf(n + static_cast<std::int32_t>(i), kHundredths).c_str());
            values[i] = time.GetValue();
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(values, (std::array<std::int32_t, 4>{1000, 1001, 1002, 1003}));
}
