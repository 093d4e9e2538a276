#include <array>
#include <cstdio>

#include "TimeVocabulary.h"

// Every frame of a day, in every type. Drop frame has a file of its own.

namespace {

constexpr std::int32_t kSecondsADay = 86400;

/// Counts on its own, the way a clock does.
class Odometer {
public:
    explicit Odometer(std::int32_t unitsASecond)
        : m_units(unitsASecond) {}

    void Advance(std::int32_t frames) {
        m_frames += frames;
        Carry(m_frames, m_units, m_seconds);
        Carry(m_seconds, 60, m_minutes);
        Carry(m_minutes, 60, m_hours);
    }

    bool Agrees(const MTime& time) const {
        return time.GetHours() == m_hours && time.GetMinutes() == m_minutes && time.GetSeconds() == m_seconds &&
               time.GetFrames() == m_frames;
    }

private:
    static void Carry(std::int32_t& part, std::int32_t most, std::int32_t& next) {
        for (; part >= most; part -= most)
            ++next;
    }

    std::int32_t m_units;
    std::int32_t m_hours = 0, m_minutes = 0, m_seconds = 0, m_frames = 0;
};

/// Value to text and back, value to parts and back, and the same below zero, in steps through a day.
void ExpectDayGoesThereAndBack(std::int32_t type, std::int32_t unitsASecond, std::int32_t step) {
    Odometer clock(unitsASecond);
    MTime time = TimeOf(0, type);
    MTime back = time;
    MTime below = time;
    for (std::int32_t value = 0; value < kSecondsADay * unitsASecond; value += step) {
        time.SetValue(value);
        below.SetValue(-value);
        back.SetFromText(time.GetText());
        ASSERT_EQ(back.GetValue(), value) << time.GetText();
        back.SetFromText(below.GetText());
        ASSERT_EQ(back.GetValue(), -value) << below.GetText();
        back.SetHMSF(time.GetHours(), time.GetMinutes(), time.GetSeconds(), time.GetFrames());
        ASSERT_EQ(back.GetValue(), value) << time.GetText();
        ASSERT_TRUE(clock.Agrees(time)) << time.GetText();
        clock.Advance(step);
    }
}

} // namespace

TEST(MTimeDay, GoesThereAndBackInEveryFrameAt24) {
    ExpectDayGoesThereAndBack(kFilm, 24, 1);
}

TEST(MTimeDay, GoesThereAndBackInEveryFrameAt25) {
    ExpectDayGoesThereAndBack(kVideo25, 25, 1);
}

TEST(MTimeDay, GoesThereAndBackInEveryFrameAt30) {
    ExpectDayGoesThereAndBack(kVideo30, 30, 1);
}

// Finer units take steps without a common divisor with 1000 or 60: every hundredth and every millisecond is met beside
// every second, minute and hour, though not all of them together. All of them take minutes on a machine that is busy.
TEST(MTimeDay, GoesThereAndBackInHundredthsAllThroughTheDay) {
    ExpectDayGoesThereAndBack(kHundredths, 100, 7);
}

TEST(MTimeDay, GoesThereAndBackInMillisecondsAllThroughTheDay) {
    ExpectDayGoesThereAndBack(kMilliseconds, 1000, 53);
}
