#include "ChangeFeed.h"

#include <future>

#include <gtest/gtest.h>

using namespace stagehost;

namespace {

constexpr std::chrono::seconds kLong(20);

/// Collects changes until there are enough.
class Collector {
public:
    explicit Collector(std::size_t count)
        : m_count(count) {}

    ChangeFeed::Listener Listener() {
        return [this](const ShowChange& change) {
            const std::lock_guard<std::mutex> hold(m_lock);
            m_changes.push_back(change);
            m_changed.notify_all();
        };
    }

    std::vector<ShowChange> Wait() {
        std::unique_lock<std::mutex> hold(m_lock);
        m_changed.wait_for(hold, kLong, [this] { return m_changes.size() >= m_count; });
        return m_changes;
    }

private:
    const std::size_t m_count;
    std::mutex m_lock; ///< guards m_changes
    std::condition_variable m_changed;
    std::vector<ShowChange> m_changes;
};

} // namespace

TEST(ChangeFeed, TellsEveryChangeOnceInOrderToEveryListener) {
    ChangeFeed feed;
    Collector first(300);
    Collector second(300);
    const Subscription one = feed.Subscribe(first.Listener());
    const Subscription two = feed.Subscribe(second.Listener());
    for (int number = 0; number < 300; ++number)
        feed.Tell(ObjectKind::Task, "t", "Line", std::to_string(number));
    const auto heard = first.Wait();
    ASSERT_EQ(heard.size(), 300u);
    for (std::size_t index = 0; index < heard.size(); ++index) {
        EXPECT_EQ(heard[index].value, std::to_string(index));
        EXPECT_EQ(heard[index].number, index + 1);
    }
    EXPECT_EQ(second.Wait().size(), 300u);
}

TEST(ChangeFeed, TellsNothingThatCameBeforeTheSubscription) {
    ChangeFeed feed;
    std::promise<void> held;
    std::promise<void> reached;
    const Subscription holder = feed.Subscribe([&, first = true](const ShowChange&) mutable {
        if (!first)
            return;
        first = false;
        reached.set_value();
        held.get_future().wait();
    });
    feed.Tell(ObjectKind::Task, "t", "Line", "1");
    feed.Tell(ObjectKind::Task, "t", "Line", "2");
    reached.get_future().wait();
    Collector late(1);
    const Subscription subscription = feed.Subscribe(late.Listener());
    feed.Tell(ObjectKind::Task, "t", "Line", "3");
    held.set_value();
    const auto heard = late.Wait();
    ASSERT_EQ(heard.size(), 1u);
    EXPECT_EQ(heard[0].value, "3");
}

TEST(ChangeFeed, EndsASubscriptionOnlyWhenItsListenerHasReturned) {
    ChangeFeed feed;
    std::promise<void> reached;
    std::promise<void> go;
    std::atomic<bool> returned{false};
    Subscription subscription = feed.Subscribe([&](const ShowChange&) {
        reached.set_value();
        go.get_future().wait();
        returned = true;
    });
    feed.Tell(ObjectKind::Task, "t", "Line", "1");
    reached.get_future().wait();
    auto ended = std::async(std::launch::async, [&] {
        subscription.reset();
        return returned.load();
    });
    go.set_value();
    EXPECT_TRUE(ended.get());
}

TEST(ChangeFeed, LetsAListenerEndItsOwnSubscription) {
    ChangeFeed feed;
    std::promise<void> done;
    int calls = 0;
    Subscription subscription;
    std::mutex lock;
    const std::unique_lock<std::mutex> made(lock);
    subscription = feed.Subscribe([&](const ShowChange&) {
        ++calls;
        const std::lock_guard<std::mutex> hold(lock);
        subscription.reset();
        done.set_value();
    });
    feed.Tell(ObjectKind::Task, "t", "Line", "1");
    feed.Tell(ObjectKind::Task, "t", "Line", "2");
    const_cast<std::unique_lock<std::mutex>&>(made).unlock();
    done.get_future().wait();
    Collector after(1);
    const Subscription other = feed.Subscribe(after.Listener());
    feed.Tell(ObjectKind::Task, "t", "Line", "3");
    after.Wait();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(feed.IsWanted());
}

TEST(ChangeFeed, WantsNothingWhileNobodyListens) {
    ChangeFeed feed;
    EXPECT_FALSE(feed.IsWanted());
    Subscription subscription = feed.Subscribe([](const ShowChange&) {});
    EXPECT_TRUE(feed.IsWanted());
    subscription.reset();
    EXPECT_FALSE(feed.IsWanted());
}

TEST(ChangeFeed, SettlesWhenAllThatWasToldHasBeenHeard) {
    ChangeFeed feed;
    feed.Settle();
    std::atomic<int> calls{0};
    const Subscription subscription = feed.Subscribe([&](const ShowChange&) { ++calls; });
    for (int number = 0; number < 500; ++number)
        feed.Tell(ObjectKind::Task, "t", "Line", "x");
    feed.Settle();
    EXPECT_EQ(calls.load(), 500);
    feed.Settle();
}

TEST(ChangeFeed, EndsWithChangesThatNobodyHasHeard) {
    std::promise<void> reached;
    std::promise<void> go;
    {
        ChangeFeed feed;
        std::atomic<int> calls{0};
        Subscription subscription = feed.Subscribe([&](const ShowChange&) {
            if (++calls == 1)
                reached.set_value();
        });
        for (int number = 0; number < 1000; ++number)
            feed.Tell(ObjectKind::Task, "t", "Line", "x");
        reached.get_future().wait();
        subscription.reset();
        EXPECT_GE(calls.load(), 1);
    }
    SUCCEED() << "no hang";
}
