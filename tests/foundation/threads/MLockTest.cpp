#include "MLock.h"

#include <thread>

#include <gtest/gtest.h>

namespace {

bool AnotherThreadCanEnter(MLock& lock) {
    bool entered = false;
    std::thread([&] {
        entered = lock.TryEnter();
        if (entered)
            lock.Leave();
    }).join();
    return entered;
}

} // namespace

TEST(MLock, ItsOwnThreadMayEnterAgain) {
    MLock lock;
    lock.Enter();
    lock.Enter();
    EXPECT_TRUE(lock.TryEnter());
    lock.Leave();
    lock.Leave();
    EXPECT_FALSE(AnotherThreadCanEnter(lock)) << "one level is left";
    lock.Leave();
    EXPECT_TRUE(AnotherThreadCanEnter(lock));
}

TEST(MLock, WorksWithTheStandardGuards) {
    MLock lock;
    {
        const std::lock_guard<MLock> guard(lock);
        EXPECT_FALSE(AnotherThreadCanEnter(lock));
        const std::unique_lock<MLock> second(lock, std::try_to_lock);
        EXPECT_TRUE(second.owns_lock());
    }
    EXPECT_TRUE(AnotherThreadCanEnter(lock));
}
