#include "ScriptWaits.h"

#include <future>
#include <thread>

#include <gtest/gtest.h>

namespace {

TEST(ScriptWaits, AreEndedWhileTheyLastAndNotBegunInTheSameRun) {
    ScriptWaits waits;
    int woken = 0;
    {
        const ScriptWait wait(&waits, [&] { ++woken; });
        ASSERT_TRUE(wait.IsAllowed());
        waits.EndRun();
        EXPECT_EQ(woken, 1);
    }
    EXPECT_FALSE(ScriptWait(&waits, [&] { ++woken; }).IsAllowed());
    waits.EndRun();
    EXPECT_EQ(woken, 1) << "a wait that is over, or did not begin, is not ended";
}

TEST(ScriptWaits, BeginAgainInTheStopFunctionUntilItsTimeIsOver) {
    ScriptWaits waits;
    waits.EndRun();
    waits.BeginStopFunction();
    EXPECT_TRUE(ScriptWait(&waits, [] {}).IsAllowed());
    waits.Refuse();
    EXPECT_FALSE(ScriptWait(&waits, [] {}).IsAllowed());
    waits.BeginStopFunction();
    EXPECT_FALSE(ScriptWait(&waits, [] {}).IsAllowed()) << "a stop function that comes too late";
}

TEST(ScriptWaits, DoNotBeginInAScriptThatIsLoadedDuringAStop) {
    ScriptWaits waits;
    waits.EndRun();
    waits.Allow();
    EXPECT_FALSE(ScriptWait(&waits, [] {}).IsAllowed());
    waits.Refuse();
    waits.Allow();
    EXPECT_FALSE(ScriptWait(&waits, [] {}).IsAllowed());
    waits.Reopen();
    EXPECT_FALSE(ScriptWait(&waits, [] {}).IsAllowed()) << "the run that was stopped may still go on";
    waits.Allow();
    EXPECT_TRUE(ScriptWait(&waits, [] {}).IsAllowed());
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
    waits.Reopen();
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
        other = std::thread([&] { waits.EndRun(); });
        waking.get_future().wait();
        goOn.set_value();
    }
    EXPECT_TRUE(awake);
    other.join();
}

} // namespace
