#include <new>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "ChangeFeed.h"
#include "FailingAllocations.h"
#include "ValueFactory.h"

using namespace stagehost;

namespace {

std::unique_ptr<HostValue> GivenNumber() {
    ValueSpec spec;
    spec.type = KXP_INTEGER_DATA;
    spec.name = "number";
    return MakeValue(spec);
}

/// Tries the work with no memory, with enough for one allocation, for two, and so on. @param look after each try that
/// has failed. @return how many have.
template <typename Work, typename Look>
int TryUntilThereIsEnough(const Work& work, const Look& look) {
    for (int granted = 0;; ++granted) {
        try {
            const FailingAllocations failing(granted);
            work();
            return granted;
        } catch (const std::bad_alloc&) {
            look();
        }
    }
}

TEST(WantOfMemory, EndsAnObservationAllTheSame) {
    const auto value = GivenNumber();
    int first = 0;
    int second = 0;
    Observation gone = value->Observe([&first] { ++first; });
    const Observation stays = value->Observe([&second] { ++second; });
    {
        const FailingAllocations failing;
        gone.reset();
        EXPECT_FALSE(failing.HasStruck()) << "the end of one takes no memory";
    }
    value->SetInt(1);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

TEST(WantOfMemory, MakesAnObservationOrNone) {
    const auto value = GivenNumber();
    int calls = 0;
    Observation observation;
    const int tries = TryUntilThereIsEnough([&] { observation = value->Observe([&calls] { ++calls; }); },
                                            [&] {
                                                value->SetInt(value->Int() + 1);
                                                EXPECT_EQ(calls, 0);
                                            });
    EXPECT_GT(tries, 1);
    value->SetInt(-1);
    EXPECT_EQ(calls, 1);
}

TEST(WantOfMemory, MakesASubscriptionOrNone) {
    ChangeFeed feed;
    std::atomic<int> heard{0};
    Subscription subscription;
    const int tries =
        TryUntilThereIsEnough([&] { subscription = feed.Subscribe([&heard](const ShowChange&) { ++heard; }); },
                              [&] {
                                  EXPECT_FALSE(feed.IsWanted());
                                  feed.Tell(ObjectKind::Task, "t", "Line", "1");
                                  feed.Settle();
                                  EXPECT_EQ(heard, 0);
                              });
    EXPECT_GT(tries, 1);
    EXPECT_TRUE(feed.IsWanted());
    feed.Tell(ObjectKind::Task, "t", "Line", "2");
    feed.Settle();
    EXPECT_EQ(heard, 1);
    subscription.reset();
    EXPECT_FALSE(feed.IsWanted());
}

} // namespace
