#include "VisitGate.h"

#include <atomic>
#include <future>

#include <gtest/gtest.h>

namespace {

constexpr std::chrono::seconds kDeadline(20);

TEST(VisitGate, LetsVisitorsInBesideOneAnotherAndInsideOneAnother) {
    VisitGate gate;
    const VisitGate::Visit outer(gate);
    EXPECT_TRUE(outer.IsAllowed());
    EXPECT_TRUE(VisitGate::Visit(gate).IsAllowed());
    EXPECT_TRUE(std::async(std::launch::async, [&] { return VisitGate::Visit(gate).IsAllowed(); }).get());
}

TEST(VisitGate, WithoutAGateEverybodyIsAllowedIn) {
    EXPECT_TRUE(VisitGate::Visit(nullptr).IsAllowed());
}

TEST(VisitGate, KeepsVisitorsOutWhileSomethingIsReplaced) {
    VisitGate gate;
    std::atomic<bool> replaced{false};
    std::future<bool> visiting;
    gate.Replace([&] {
        visiting = std::async(std::launch::async, [&] {
            const VisitGate::Visit visit(gate);
            return visit.IsAllowed() && replaced;
        });
        EXPECT_EQ(visiting.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
        replaced = true;
    });
    EXPECT_TRUE(visiting.get());
}

TEST(VisitGate, TurnsTheReplacersOwnVisitAwayAtOnceAndRunsAReplacementInsideTheOther) {
    VisitGate gate;
    bool ranInside = false;
    gate.Replace([&] {
        EXPECT_FALSE(VisitGate::Visit(gate).IsAllowed());
        gate.Replace([&] { ranInside = true; });
        EXPECT_FALSE(VisitGate::Visit(gate).IsAllowed());
    });
    EXPECT_TRUE(ranInside);
    EXPECT_TRUE(VisitGate::Visit(gate).IsAllowed());
}

TEST(VisitGate, TurnsVisitorsAwayWhileTheReplacerWaitsForThemInAStandstill) {
    VisitGate gate;
    const auto visit = [&] { return VisitGate::Visit(gate).IsAllowed(); };
    gate.Replace([&] {
        const auto begin = std::chrono::steady_clock::now();
        auto before = std::async(std::launch::async, visit);
        EXPECT_EQ(before.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
        const VisitGate::Standstill standstill(gate);
        EXPECT_FALSE(before.get()) << "it waited already";
        EXPECT_FALSE(std::async(std::launch::async, visit).get());
        EXPECT_LT(std::chrono::steady_clock::now() - begin, VisitGate::kVisitWait);
    });
    EXPECT_TRUE(visit());
}

TEST(VisitGate, KeepsVisitorsWaitingDuringAStandstillOfAnotherThreadOrOneThatIsOver) {
    VisitGate gate;
    std::future<bool> visiting;
    const VisitGate::Standstill ofNobodyWhoReplaces(gate);
    std::async(std::launch::async, [&] {
        gate.Replace([&] {
            { const VisitGate::Standstill over(gate); }
            visiting = std::async(std::launch::async, [&] { return VisitGate::Visit(gate).IsAllowed(); });
            EXPECT_EQ(visiting.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
        });
    }).wait();
    EXPECT_TRUE(visiting.get());
}

TEST(VisitGate, AReplacementWaitsForWhoIsInsideButNotForEver) {
    VisitGate gate;
    std::promise<void> entered;
    std::promise<void> leave;
    std::atomic<bool> isInside{true};
    auto visiting = std::async(std::launch::async, [&] {
        const VisitGate::Visit visit(gate);
        entered.set_value();
        leave.get_future().wait_for(kDeadline);
        isInside = false;
    });
    entered.get_future().wait();
    bool wasInside = false;
    gate.Replace([&] {
        wasInside = isInside;
        leave.set_value();
    });
    EXPECT_TRUE(wasInside) << "the visitor may wait for the replacement";
    visiting.wait();
    gate.Replace([&] { EXPECT_FALSE(isInside); });
}

TEST(VisitGate, ReplacementsOfTwoThreadsRunOneAfterTheOther) {
    VisitGate gate;
    std::atomic<int> running{0};
    const auto replaceOften = [&] {
        bool alone = true;
        for (int i = 0; i < 500; ++i)
            gate.Replace([&] { alone = running.fetch_add(1) == 0 && alone && running.fetch_sub(1) == 1; });
        return alone;
    };
    auto other = std::async(std::launch::async, replaceOften);
    EXPECT_TRUE(replaceOften());
    EXPECT_TRUE(other.get());
}

} // namespace
