#include "MyPostponedObject.h"

#include <set>
#include <thread>

#include <gtest/gtest.h>

#include "CommandFixture.h"
#include "MIObjectMap.h"

TEST(MyPostponedObject, KeepsItsCommandUntilTheLastReferenceGoes) {
    Requests requests;
    int request = 0;
    auto* object = new MyPostponedObject(new MCommandObject(nullptr, 1, 0, &requests, &request));
    EXPECT_EQ(object->GetCommand()->GetId(), 1);
    EXPECT_EQ(object->AddRef(), 2) << "it began with 1";
    EXPECT_EQ(object->Release(), 1);
    EXPECT_EQ(requests.Ended(), 0U);
    EXPECT_EQ(object->Release(), 0);
    EXPECT_TRUE(requests.HasEnded(&request));
}

TEST(MyPostponedObject, MayHaveNoCommand) {
    auto* object = new MyPostponedObject(nullptr);
    EXPECT_EQ(object->GetCommand(), nullptr);
    EXPECT_EQ(object->Release(), 0);
}

TEST(MyPostponedObject, IdsDifferAndAreNeverZero) {
    const MyPostponedObject first(nullptr);
    const MyPostponedObject second(nullptr);
    EXPECT_NE(first.GetId(), 0U);
    EXPECT_NE(first.GetId(), second.GetId());
}

TEST(MyPostponedObject, IdsNeverTakeTheValueZeroAlsoAfterTheCounterWraps) {
    InterlockedCounter fresh;
    EXPECT_EQ(MyPostponedObject::NextId(fresh), 1U);
    InterlockedCounter counter(-3);
    EXPECT_EQ(MyPostponedObject::NextId(counter), 0xFFFFFFFEU);
    EXPECT_EQ(MyPostponedObject::NextId(counter), 0xFFFFFFFFU);
    EXPECT_EQ(MyPostponedObject::NextId(counter), 1U);
    EXPECT_EQ(MyPostponedObject::NextId(counter), 2U);
}

TEST(MyPostponedObject, IdsTakenOnManyThreadsAtTheWrapAreUniqueAndNotZero) {
    InterlockedCounter counter(-1000);
    std::vector<std::vector<std::uint32_t>> taken(4);
    std::vector<std::thread> threads;
    threads.reserve(taken.size());
    for (auto& ids : taken)
        threads.emplace_back([&] {
            for (int n = 0; n < 1000; ++n)
                ids.push_back(MyPostponedObject::NextId(counter));
        });
    for (auto& thread : threads)
        thread.join();
    std::set<std::uint32_t> all;
    for (const auto& ids : taken)
        all.insert(ids.begin(), ids.end());
    EXPECT_EQ(all.size(), 4000U);
    EXPECT_EQ(all.count(0), 0U);
}

TEST(MyPostponedObject, AMapDeletesItWithItsCommand) {
    Requests requests;
    int request = 0;
    MIObjectMap map(10, true);
    auto* object = new MyPostponedObject(new MCommandObject(nullptr, 1, 0, &requests, &request));
    object->AddRef();
    ASSERT_TRUE(map.Add(object));
    EXPECT_EQ(map.Find(object->GetId()), object);
    map.DeleteAll();
    EXPECT_TRUE(requests.HasEnded(&request));
}
