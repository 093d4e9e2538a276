#include "Clock.h"

#include <gtest/gtest.h>

#include "Deadline.h"

TEST(Clock, MovesForwardByMilliseconds) {
    using namespace std::chrono;
    const auto before = steady_clock::now();
    const std::uint32_t start = MillisecondClock();
    EXPECT_TRUE(Eventually([&] { return MillisecondClock() - start >= 5; }));
    const auto passed = duration_cast<milliseconds>(steady_clock::now() - before).count();
    EXPECT_GE(passed, 4) << "five of its milliseconds are not less than real ones";
    EXPECT_LT(MillisecondClock() - start, 60000U) << "nor far more";
}
