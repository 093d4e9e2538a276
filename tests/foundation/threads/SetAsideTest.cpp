#include "SetAside.h"

#include <atomic>
#include <set>
#include <thread>

#include <gtest/gtest.h>

namespace {

/// Somebody may be inside; what happens when it goes is the test's.
struct Lodger {
    std::atomic<bool> isInUse{true};
    std::function<void()> onEnd;
    ~Lodger() {
        if (onEnd)
            onEnd();
    }
};

class ThingsSetAside : public testing::Test {
protected:
    Lodger* Make(bool isInUse) {
        auto* lodger = new Lodger;
        lodger->isInUse = isInUse;
        lodger->onEnd = [this] { ++gone; };
        return lodger;
    }

    std::atomic<int> gone{0};
    SetAside<Lodger> aside{[](const Lodger& lodger) { return !lodger.isInUse; }, [](Lodger* lodger) { delete lodger; }};
};

TEST_F(ThingsSetAside, StayWhileSomebodyIsInsideAndGoWithTheNextSweep) {
    Lodger* first = Make(true);
    Lodger* second = Make(true);
    aside.Add(first);
    aside.Add(Make(false));
    aside.Add(second);
    EXPECT_EQ(aside.Sweep(), 2u);
    EXPECT_EQ(gone, 1);
    EXPECT_EQ(aside.Sweep(), 2u);
    second->isInUse = false;
    EXPECT_EQ(aside.Sweep(), 1u);
    EXPECT_EQ(gone, 2);
    first->isInUse = false;
    EXPECT_EQ(aside.Sweep(), 0u);
    EXPECT_EQ(gone, 3);
    EXPECT_EQ(aside.Sweep(), 0u);
    EXPECT_EQ(gone, 3);
}

TEST_F(ThingsSetAside, MaySetOthersAsideAndSweepWhileTheyGo) {
    Lodger* last = Make(true);
    Lodger* first = Make(false);
    std::size_t left = 0;
    first->onEnd = [&] {
        ++gone;
        aside.Add(last);
        left = aside.Sweep();
    };
    aside.Add(first);
    aside.Sweep();
    EXPECT_EQ(left, 1u);
    last->isInUse = false;
    EXPECT_EQ(aside.Sweep(), 0u);
    EXPECT_EQ(gone, 2);
}

TEST_F(ThingsSetAside, AreLeftAloneWhereTheOwnerGoesFirst) {
    Lodger* lodger = Make(true);
    {
        SetAside<Lodger> passing([](const Lodger& one) { return !one.isInUse; }, [](Lodger* one) { delete one; });
        passing.Add(lodger);
        EXPECT_EQ(passing.Sweep(), 1u);
    }
    EXPECT_EQ(gone, 0);
    delete lodger;
}

TEST_F(ThingsSetAside, GoOnceEachWhenManyThreadsAddAndSweep) {
    constexpr int kThreads = 4;
    constexpr int kEach = 500;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([this] {
            for (int n = 0; n < kEach; ++n) {
                Lodger* lodger = Make(true);
                aside.Add(lodger);
                lodger->isInUse = false; // nobody touches it from here on
                aside.Sweep();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(aside.Sweep(), 0u);
    EXPECT_EQ(gone, kThreads * kEach);
}

} // namespace
