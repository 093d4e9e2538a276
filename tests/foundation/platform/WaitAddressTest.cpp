#include "WaitAddress.h"

#include <thread>

#include <gtest/gtest.h>

#include "Clock.h"
#include "Deadline.h"
#include "SystemThread.h"

TEST(WaitAddress, DoesNotSleepWhenTheWordHasChanged) {
    const std::atomic<std::uint32_t> word{2};
    EXPECT_TRUE(WaitOnAddress(word, 1, kInfinite));
}

TEST(WaitAddress, GivesUpAfterItsTimeOut) {
    const std::atomic<std::uint32_t> word{1};
    const std::uint32_t start = MillisecondClock();
    while (WaitOnAddress(word, 1, 20)) // may wake for no reason
        ASSERT_LT(MillisecondClock() - start, kDeadlineMs);
    EXPECT_GE(MillisecondClock() - start, 19U);
}

TEST(WaitAddress, WakesEverybodyWhoSleeps) {
    std::atomic<std::uint32_t> word{1};
    std::atomic<int> awake{0};
    const auto sleep = [&] {
        while (word == 1)
            WaitOnAddress(word, 1, kInfinite);
        ++awake;
    };
    std::thread first(sleep);
    std::thread second(sleep);
    word = 2;
    WakeAllOnAddress(&word);
    EXPECT_TRUE(Eventually([&] { return awake == 2; }));
    first.join();
    second.join();
}

TEST(WaitAddress, WakingAtAnAddressWithoutMemoryIsHarmless) {
    WakeAllOnAddress(nullptr); // no program has memory there
    SUCCEED() << "came back";
}
