#include "MEvent.h"

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Deadline.h"

TEST(MEvent, IsClearAtFirstUnlessAskedOtherwise) {
    EXPECT_FALSE(MEvent().IsSet());
    EXPECT_TRUE(MEvent(true).IsSet());
}

TEST(MEvent, StaysSetUntilItIsReset) {
    MEvent event;
    event.Set();
    EXPECT_TRUE(event.Wait(0));
    EXPECT_TRUE(event.Wait(kInfinite)) << "a wait does not use it up";
    event.Reset();
    EXPECT_FALSE(event.IsSet());
    EXPECT_FALSE(event.Wait(0));
    EXPECT_FALSE(event.Wait(3));
}

TEST(MEvent, LetsEveryWaiterThrough) {
    MEvent event;
    std::atomic<int> passed{0};
    std::vector<std::thread> waiters;
    waiters.reserve(8);
    for (int i = 0; i < 8; ++i)
        waiters.emplace_back([&, i] { passed += event.Wait(i % 2 ? kInfinite : kDeadlineMs) ? 1 : 0; });
    event.Set();
    for (auto& waiter : waiters)
        waiter.join();
    EXPECT_EQ(passed, 8);
}

TEST(MEvent, ASetIsNotLostWhenAResetFollowsAtOnce) {
    for (int round = 0; round < 200; ++round) {
        MEvent event;
        MEvent waiting;
        std::atomic<bool> passed{false};
        std::thread waiter([&] {
            waiting.Set();
            passed = event.Wait(kDeadlineMs);
        });
        ASSERT_TRUE(waiting.Wait(kDeadlineMs));
        EXPECT_TRUE(Eventually([&] { // the waiter may not wait yet, so pulses go on until it has seen one
            event.Set();
            event.Reset();
            return passed.load();
        }));
        event.Set();
        waiter.join();
    }
}

TEST(MEvent, NoSetIsLostBetweenTwoThreads) {
    MEvent ping;
    MEvent pong;
    constexpr int kRounds = 20000;
    std::thread other([&] {
        for (int i = 0; i < kRounds && ping.Wait(kDeadlineMs); ++i) {
            ping.Reset();
            pong.Set();
        }
    });
    int rounds = 0;
    for (; rounds < kRounds; ++rounds) {
        ping.Set();
        if (!pong.Wait(kDeadlineMs))
            break;
        pong.Reset();
    }
    other.join();
    EXPECT_EQ(rounds, kRounds);
}

TEST(MEvent, MayBeDestroyedAsSoonAsAWaiterPassed) {
    for (int round = 0; round < 3000; ++round) {
        auto event = std::make_unique<MEvent>();
        std::thread setter([raw = event.get()] { raw->Set(); });
        EXPECT_TRUE(event->Wait(kDeadlineMs));
        event.reset();
        setter.join();
    }
}
