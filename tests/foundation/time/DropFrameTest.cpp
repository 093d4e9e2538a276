#include <array>

#include "TimeVocabulary.h"

// The simple rule of drop frame, against the published numbering (SMPTE ST 12-1): labels 0 and 1 of each minute are
// left out, but for minutes that ten divides. docs/timecode.md tells what these numbers mean for a show.

namespace {

constexpr std::int32_t kPublishedFramesAnHour = 107892;
constexpr std::int32_t kPublishedFramesADay = 24 * kPublishedFramesAnHour;
constexpr std::int32_t kLabelsADay = 24 * 108000;

/// Counts published labels one by one, without arithmetic on frame numbers.
struct PublishedLabel {
    std::int32_t hours = 0, minutes = 0, seconds = 0, frames = 0;

    void Advance() {
        if (++frames < 30)
            return;
        frames = 0;
        if (++seconds < 60)
            return;
        seconds = 0;
        if (++minutes == 60) {
            minutes = 0;
            ++hours;
        }
        frames = minutes % 10 == 0 ? 0 : 2;
    }
};

/// "00:01:00/02" as the number of labels before it, had none been dropped.
std::int32_t LabelNumber(std::int32_t hours, std::int32_t minutes, std::int32_t seconds, std::int32_t frames) {
    return ((hours * 60 + minutes) * 60 + seconds) * 30 + frames;
}

std::int32_t LabelNumber(const PublishedLabel& label) {
    return LabelNumber(label.hours, label.minutes, label.seconds, label.frames);
}

std::int32_t LabelNumber(const MTime& time) {
    return LabelNumber(time.GetHours(), time.GetMinutes(), time.GetSeconds(), time.GetFrames());
}

bool IsDropped(const MTime& time) {
    return time.GetMinutes() % 10 != 0 && time.GetSeconds() == 0 && time.GetFrames() < 2;
}

struct FrameRow {
    std::int32_t frame, readBack;
    const char* text;
    const char* published;
};

constexpr FrameRow kAroundMinutes[] = {
    {1799, 1799, "00:00:59/29", "00:00:59/29"},       {1800, 1800, "00:01:00/02", "00:01:00/02"},
    {3597, 3597, "00:01:59/29", "00:01:59/29"},       {3598, 3596, "00:02:00/00", "00:02:00/02"},
    {3599, 3597, "00:02:00/01", "00:02:00/03"},       {3600, 3600, "00:02:00/04", "00:02:00/04"},
    {17981, 17981, "00:09:59/29", "00:09:59/29"},     {17982, 17982, "00:10:00/00", "00:10:00/00"},
    {107892, 107892, "01:00:00/00", "01:00:00/00"},   {1800000, 1799998, "16:41:00/00", "16:41:00/02"},
    {2589407, 2589405, "23:59:59/27", "23:59:59/29"},
};

} // namespace

TEST(DropFrame, ReadsEveryPublishedLabelOfADayAsItsFrame) {
    PublishedLabel label;
    MTime read = TimeOf(0, kDropFrame);
    MTime joined = read;
    MTime writer = TimeOf(0, kVideo30); // writes labels as they are
    for (std::int32_t frame = 0; frame < kPublishedFramesADay; ++frame) {
        writer.SetValue(LabelNumber(label));
        read.SetFromText(writer.GetText());
        joined.SetHMSF(label.hours, label.minutes, label.seconds, label.frames);
        ASSERT_EQ(read.GetValue(), frame) << writer.GetText();
        ASSERT_EQ(joined.GetValue(), frame) << writer.GetText();
        label.Advance();
    }
    EXPECT_EQ(LabelNumber(label), kLabelsADay);
}

TEST(DropFrame, MeansItThatTextsFallBehindThePublishedLabels) {
    PublishedLabel label;
    MTime time = TimeOf(0, kDropFrame);
    std::array<std::int32_t, 5> behindBy{};
    std::array<std::int32_t, 24> rightInHour{};
    std::int32_t first = -1;
    std::int32_t lastRight = -1;
    std::int32_t dropped = 0;
    std::int32_t before = -1;
    for (std::int32_t frame = 0; frame < kPublishedFramesADay; ++frame) {
        time.SetValue(frame);
        const std::int32_t number = LabelNumber(time);
        const std::int32_t behind = LabelNumber(label) - number;
        ASSERT_TRUE(behind == 0 || behind == 2 || behind == 4) << frame;
        ASSERT_GT(number, before) << "no text stands for two frames: " << frame;
        ++behindBy[static_cast<std::size_t>(behind)];
        first = behind != 0 && first < 0 ? frame : first;
        lastRight = behind == 0 ? frame : lastRight;
        rightInHour[static_cast<std::size_t>(label.hours)] += behind == 0 ? 1 : 0;
        dropped += IsDropped(time) ? 1 : 0;
        before = number;
        label.Advance();
    }
    EXPECT_EQ(first, 3598);
    EXPECT_EQ(lastRight, 2573225);
    EXPECT_EQ(rightInHour[0] * 100 / kPublishedFramesAnHour, 97);
    EXPECT_EQ(rightInHour[11] * 100 / kPublishedFramesAnHour, 37);
    EXPECT_EQ(rightInHour[23] * 100 / kPublishedFramesAnHour, 5);
    EXPECT_EQ(behindBy[0], 1051272);
    EXPECT_EQ(behindBy[2], 1398744);
    EXPECT_EQ(behindBy[4], 139392);
    EXPECT_EQ(dropped, 2588) << "texts that the published numbering does not have";
}

TEST(DropFrame, MeansItThatATextReadBackMayBeAnEarlierFrame) {
    MTime time = TimeOf(0, kDropFrame);
    MTime back = time;
    MTime below = time;
    std::array<std::int32_t, 5> earlierBy{};
    for (std::int32_t frame = 0; frame < kLabelsADay; ++frame) {
        time.SetValue(frame);
        below.SetValue(-frame);
        back.SetFromText(time.GetText());
        const std::int32_t earlier = frame - back.GetValue();
        ASSERT_TRUE(earlier == 0 || earlier == 2 || earlier == 4) << frame;
        ++earlierBy[static_cast<std::size_t>(earlier)];
        back.SetFromText(below.GetText());
        ASSERT_EQ(back.GetValue(), earlier - frame) << "the same below zero";
    }
    EXPECT_EQ(earlierBy[0], 1052280);
    EXPECT_EQ(earlierBy[2], 1401032);
    EXPECT_EQ(earlierBy[4], 138688);
}

TEST(DropFrame, WritesTheFramesAroundMinutesAsItsPageTells) {
    for (const FrameRow& row : kAroundMinutes) {
        EXPECT_EQ(TextOf(row.frame, kDropFrame), row.text);
        EXPECT_EQ(ValueOf(row.published, kDropFrame), row.frame) << row.published;
        EXPECT_EQ(ValueOf(row.text, kDropFrame), row.readBack) << row.text;
    }
}
