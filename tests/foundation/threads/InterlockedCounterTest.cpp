#include "InterlockedCounter.h"

#include <limits>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

TEST(InterlockedCounter, CountsAndReturnsTheNewValue) {
    InterlockedCounter counter;
    EXPECT_EQ(counter.Increment(), 1);
    EXPECT_EQ(counter.Increment(), 2);
    EXPECT_EQ(counter.Decrement(), 1);
    EXPECT_EQ(counter.Read(), 1);
    EXPECT_EQ(counter.Exchange(9), 1);
    EXPECT_EQ(counter.Read(), 9);
}

TEST(InterlockedCounter, WrapsAtBothEnds) {
    InterlockedCounter counter(std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(counter.Increment(), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(counter.Decrement(), std::numeric_limits<std::int32_t>::max());
}

TEST(InterlockedCounter, LeavesAZeroAloneWhenItIsAskedTo) {
    InterlockedCounter counter(1);
    EXPECT_TRUE(counter.DecrementUnlessZero());
    EXPECT_FALSE(counter.DecrementUnlessZero());
    EXPECT_FALSE(counter.IncrementUnlessZero());
    EXPECT_EQ(counter.Read(), 0);
    counter.Exchange(2);
    EXPECT_TRUE(counter.IncrementUnlessZero());
    EXPECT_EQ(counter.Read(), 3);
}

TEST(InterlockedCounter, LosesNothingBetweenThreads) {
    InterlockedCounter counter;
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int n = 0; n < 10000; ++n)
                counter.Increment();
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(counter.Read(), 40000);
}
