#include "StopGate.h"

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include <gtest/gtest.h>

namespace {

std::chrono::steady_clock::duration TimeOfAStart(StopGate& gate) {
    const auto begin = std::chrono::steady_clock::now();
    gate.AwaitStops();
    return std::chrono::steady_clock::now() - begin;
}

} // namespace

TEST(StopGate, LetsAStartInsideAStopOfTheSameThreadGoOn) {
    StopGate gate;
    const StopGate::Stop outer(gate);
    {
        const StopGate::Stop inner(gate);
        EXPECT_LT(TimeOfAStart(gate), StopGate::kPatience);
    }
    EXPECT_LT(TimeOfAStart(gate), StopGate::kPatience);
}

TEST(StopGate, MakesAStartWaitForTheStopsOfOthersButNotForEver) {
    StopGate gate;
    std::promise<void> mayEnd;
    std::promise<void> isInside;
    std::atomic<bool> hasEnded{false};
    std::thread other([&] {
        const StopGate::Stop stop(gate);
        isInside.set_value();
        mayEnd.get_future().wait();
        hasEnded = true;
    });
    isInside.get_future().wait();
    EXPECT_GE(TimeOfAStart(gate), StopGate::kPatience);
    EXPECT_FALSE(hasEnded);
    std::thread waiter([&] {
        gate.AwaitStops();
        EXPECT_TRUE(hasEnded);
    });
    mayEnd.set_value();
    other.join();
    waiter.join();
}

TEST(StopGate, KeepsNobodyOnceItIsOpen) {
    StopGate gate;
    const StopGate::Stop stop(gate);
    std::thread waiter([&] { EXPECT_LT(TimeOfAStart(gate), StopGate::kPatience); });
    gate.Open();
    waiter.join();
}
