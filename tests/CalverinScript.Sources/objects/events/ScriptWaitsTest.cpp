#include "ScriptWaits.h"

#include <future>
#include <thread>

#include <gtest/gtest.h>

namespace {

TEST(ScriptWaits, AreEndedWhileTheyLastAndOnlyThen) {
    ScriptWaits waits;
    int woken = 0;
    waits.Break();
    {
        const ScriptWait wait(&waits, [&] { ++woken; });
        ASSERT_TRUE(wait.IsAllowed());
        waits.Break();
        EXPECT_EQ(woken, 1);
    }
    waits.Break();
    EXPECT_EQ(woken, 1);
}

TEST(ScriptWaits, DoNotBeginOnceTheyAreRefusedUntilTheyAreAllowedAgain) {
    ScriptWaits waits;
    int woken = 0;
    {
        const ScriptWait wait(&waits, [&] { ++woken; });
        waits.Refuse();
        EXPECT_EQ(woken, 1);
    }
    EXPECT_FALSE(ScriptWait(&waits, [] {}).IsAllowed());
    waits.Break();
    EXPECT_EQ(woken, 1) << "a wait that did not begin is not ended";
    waits.Allow();
    EXPECT_TRUE(ScriptWait(&waits, [] {}).IsAllowed());
}

TEST(ScriptWaits, OfAnObjectThatNobodyStopsAreAllowed) {
    EXPECT_TRUE(ScriptWait(nullptr, [] {}).IsAllowed());
}

TEST(ScriptWaits, AreOverOnlyWhenNobodyWakesThemAnyMore) {
    ScriptWaits waits;
    std::promise<void> waking;
    std::promise<void> goOn;
    std::atomic<bool> awake{false};
    std::thread other;
    {
        const ScriptWait wait(&waits, [&] {
            waking.set_value();
            goOn.get_future().wait();
            awake = true;
        });
        other = std::thread([&] { waits.Break(); });
        waking.get_future().wait();
        goOn.set_value();
    }
    EXPECT_TRUE(awake);
    other.join();
}

} // namespace
