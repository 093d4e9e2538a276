#include "Strand.h"

#include <future>
#include <vector>

#include <gtest/gtest.h>

using namespace stagehost;

namespace {

constexpr std::chrono::seconds kLong(20);

} // namespace

TEST(Strand, RunsCallsInTheirOrderOneAtATime) {
    WorkerPool pool;
    Strand strand(pool);
    std::vector<int> order; // written by one call at a time
    std::promise<void> done;
    for (int number = 0; number < 500; ++number)
        strand.Post([&order, number] { order.push_back(number); });
    strand.Post([&done] { done.set_value(); });
    ASSERT_EQ(done.get_future().wait_for(kLong), std::future_status::ready);
    ASSERT_EQ(order.size(), 500u);
    for (int number = 0; number < 500; ++number)
        EXPECT_EQ(order[number], number);
}

TEST(Strand, MayBeGivenCallsByItsOwnCalls) {
    WorkerPool pool;
    Strand strand(pool);
    std::promise<void> done;
    strand.Post([&] { strand.Post([&] { done.set_value(); }); });
    EXPECT_EQ(done.get_future().wait_for(kLong), std::future_status::ready);
}

TEST(Strand, HoldsUpNoOtherStrand) {
    WorkerPool pool;
    Strand blocked(pool);
    Strand free(pool);
    std::promise<void> gate;
    std::promise<void> done;
    blocked.Post([&] { gate.get_future().wait(); });
    free.Post([&] { done.set_value(); });
    EXPECT_EQ(done.get_future().wait_for(kLong), std::future_status::ready);
    gate.set_value();
    EXPECT_TRUE(pool.Close(kLong));
}

TEST(Strand, RunsWhatItWasGivenThoughItHasGone) {
    WorkerPool pool;
    std::promise<void> gate;
    std::promise<void> done;
    {
        Strand strand(pool);
        strand.Post([&] { gate.get_future().wait(); });
        strand.Post([&] { done.set_value(); });
    }
    gate.set_value();
    EXPECT_EQ(done.get_future().wait_for(kLong), std::future_status::ready);
}
