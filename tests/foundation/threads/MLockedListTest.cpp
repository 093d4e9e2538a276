#include "MLockedList.h"

#include <numeric>
#include <thread>

#include <gtest/gtest.h>

namespace {

bool AnotherThreadCanLock(MLockedList<int>& list) {
    bool locked = false;
    std::thread([&] {
        locked = list.TryLock();
        if (locked)
            list.Unlock();
    }).join();
    return locked;
}

} // namespace

TEST(MLockedList, AddsFindsAndRemoves) {
    MLockedList<int> list;
    EXPECT_TRUE(list.IsEmpty());
    list.Add(1);
    list.Add(1);
    EXPECT_TRUE(list.AddUnique(2));
    EXPECT_FALSE(list.AddUnique(2));
    EXPECT_EQ(list.Count(), 3U);
    EXPECT_TRUE(list.Remove(1)) << "the first of the two";
    EXPECT_TRUE(list.Contains(1));
    EXPECT_TRUE(list.Remove(1));
    EXPECT_FALSE(list.Remove(1));
    EXPECT_FALSE(list.Contains(1));
    EXPECT_EQ(list.Snapshot(), std::vector<int>{2});
    EXPECT_EQ(list.TakeAll(), std::vector<int>{2});
    EXPECT_TRUE(list.IsEmpty());
    list.Add(5);
    list.Clear();
    EXPECT_TRUE(list.IsEmpty());
}

TEST(MLockedList, GivesNothingForAPositionOutside) {
    MLockedList<int> list;
    list.Add(4);
    int value = -1;
    EXPECT_FALSE(list.Get(1, value));
    EXPECT_EQ(value, -1);
    EXPECT_TRUE(list.Get(0, value));
    EXPECT_EQ(value, 4);
}

TEST(MLockedList, TheLockNestsByCount) {
    MLockedList<int> list;
    list.Lock(3);
    list.Add(1); // its own thread may use the list
    list.Unlock(2);
    EXPECT_FALSE(AnotherThreadCanLock(list));
    list.Unlock();
    EXPECT_TRUE(AnotherThreadCanLock(list));
    list.Lock(0);
    list.Lock(-5);
    EXPECT_TRUE(AnotherThreadCanLock(list));
}

TEST(MLockedList, AWalkUnderTheLockSeesAStillList) {
    MLockedList<int> list;
    std::thread adder([&] {
        for (int i = 0; i < 5000; ++i)
            list.Add(1);
    });
    bool still = true;
    for (int round = 0; round < 50; ++round) {
        const std::lock_guard<MLockedList<int>> guard(list);
        const auto count = static_cast<int>(list.Count());
        still = still && std::accumulate(list.begin(), list.end(), 0) == count;
    }
    adder.join();
    EXPECT_TRUE(still);
    EXPECT_EQ(list.Count(), 5000U);
}
