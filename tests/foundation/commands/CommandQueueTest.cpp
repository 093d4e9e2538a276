#include "CommandQueue.h"

#include <thread>

#include <gtest/gtest.h>

#include "CommandFixture.h"

namespace {

std::unique_ptr<MCommandObject> Command(std::int32_t id, Requests* requests = nullptr) {
    return std::make_unique<MCommandObject>(nullptr, id, 0, requests, nullptr);
}

} // namespace

TEST(CommandQueue, CommandsLeaveInTheOrderInWhichTheyCame) {
    CommandQueue queue;
    EXPECT_EQ(queue.TakeOldest(), nullptr);
    for (int id = 1; id <= 3; ++id)
        EXPECT_EQ(queue.Append(Command(id), 10), nullptr);
    EXPECT_EQ(queue.Count(), 3);
    for (int id = 1; id <= 3; ++id)
        EXPECT_EQ(queue.TakeOldest()->GetId(), id);
    EXPECT_TRUE(queue.IsEmpty());
    EXPECT_EQ(queue.TakeOldest(), nullptr);
    EXPECT_EQ(queue.Append(Command(4), 10), nullptr);
    EXPECT_EQ(queue.TakeOldest()->GetId(), 4) << "usable again after it was empty";
}

TEST(CommandQueue, DropsTheOldestOnlyWhenItHeldMoreThanTheLimit) {
    CommandQueue queue;
    EXPECT_EQ(queue.Append(Command(1), 1), nullptr);
    EXPECT_EQ(queue.Append(Command(2), 1), nullptr) << "one is not more than one";
    const auto dropped = queue.Append(Command(3), 1);
    ASSERT_NE(dropped, nullptr);
    EXPECT_EQ(dropped->GetId(), 1);
    EXPECT_EQ(queue.Count(), 2);
}

TEST(CommandQueue, ClearingAndDestroyingDeleteWhatWaits) {
    Requests requests;
    {
        CommandQueue queue;
        queue.Append(Command(1, &requests), 10);
        queue.Append(Command(2, &requests), 10);
        queue.Clear();
        EXPECT_EQ(requests.Ended(), 2U);
        EXPECT_TRUE(queue.IsEmpty());
        queue.Clear();
        queue.Append(Command(3, &requests), 10);
    }
    EXPECT_EQ(requests.Ended(), 3U);
}

TEST(CommandQueue, ClearingLeavesWhatIsKept) {
    Requests requests;
    CommandQueue queue;
    const auto append = [&](int id) { queue.Append(Command(id, &requests), 10); };
    append(1);
    append(2);
    queue.KeepFromHere(true);
    append(3);
    queue.KeepFromHere(true);
    append(4);
    EXPECT_EQ(queue.TakeOldest()->GetId(), 1);
    queue.Clear();
    EXPECT_EQ(requests.Ended(), 2U);
    queue.Clear();
    EXPECT_EQ(queue.Count(), 2) << "it has no more than what is kept";
    EXPECT_EQ(queue.TakeOldest()->GetId(), 3);
    EXPECT_EQ(queue.TakeOldest()->GetId(), 4);
    append(5);
    queue.Clear();
    EXPECT_EQ(queue.Count(), 1) << "and keeps still";
    queue.KeepFromHere(false);
    append(6);
    queue.Clear();
    EXPECT_EQ(requests.Ended(), 6U);
    EXPECT_TRUE(queue.IsEmpty());
    append(7);
    EXPECT_EQ(queue.TakeOldest()->GetId(), 7) << "usable again after it was cleared";
}

TEST(CommandQueue, KeptCommandsGoWithTheQueue) {
    Requests requests;
    {
        CommandQueue queue;
        queue.KeepFromHere(true);
        queue.Append(Command(1, &requests), 10);
    }
    EXPECT_EQ(requests.Ended(), 1U);
}

TEST(CommandQueue, EachCommandLeavesExactlyOnce) {
    Requests requests;
    CommandQueue queue;
    constexpr int kEach = 2000;
    std::atomic<int> taken{0};
    std::vector<std::thread> threads;
    threads.reserve(3);
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] {
            for (int n = 0; n < kEach; ++n)
                queue.Append(Command(n, &requests), 50);
        });
    threads.emplace_back([&] {
        for (int n = 0; n < kEach; ++n) {
            taken += queue.TakeOldest() ? 1 : 0;
            if (n % 100 == 0)
                queue.Clear();
        }
    });
    for (auto& thread : threads)
        thread.join();
    queue.Clear();
    EXPECT_EQ(requests.Begun(), 3U * kEach);
    EXPECT_EQ(requests.Ended(), 3U * kEach);
}
