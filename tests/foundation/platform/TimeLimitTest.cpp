#include "TimeLimit.h"

#include <gtest/gtest.h>

#include "Deadline.h"

TEST(TimeLimit, IsOverWhenItsTimeHasPassed) {
    const TimeLimit limit{std::chrono::milliseconds(5)};
    EXPECT_TRUE(Eventually([&] { return limit.IsOver(); }));
    EXPECT_GE(TimeLimit::Clock::now(), limit.End());
    EXPECT_EQ(limit.Left().count(), 0);
}

TEST(TimeLimit, HasSomethingLeftAsLongAsItIsNotOver) {
    const TimeLimit limit{std::chrono::milliseconds(5)};
    while (limit.Left().count() > 0)
        EXPECT_LE(limit.Left().count(), 5);
    EXPECT_TRUE(limit.IsOver()) << "what waits for the rest of the time does not come early";
}

TEST(TimeLimit, OfAnHourIsNotOverAtOnce) {
    const TimeLimit limit{std::chrono::hours(1)};
    EXPECT_FALSE(limit.IsOver());
    EXPECT_GT(limit.Left(), std::chrono::minutes(50));
}
