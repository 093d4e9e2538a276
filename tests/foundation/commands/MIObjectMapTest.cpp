#include "MIObjectMap.h"

#include <atomic>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

namespace {

class Object : public IMapObject {
public:
    explicit Object(std::uint32_t id, int* destroyed = nullptr)
        : m_id(id)
        , m_destroyed(destroyed) {}
    ~Object() override {
        if (m_destroyed)
            ++*m_destroyed;
    }
    std::int32_t AddRef() override { return ++references; }
    std::int32_t Release() override { return --references; }
    std::uint32_t GetId() const override { return m_id; }

    int references = 1;

private:
    std::uint32_t m_id;
    int* m_destroyed;
};

std::vector<std::uint32_t> Walked(const MIObjectMap& map) {
    std::vector<std::uint32_t> ids;
    MIObjectMap::Iterator walk(map);
    while (const IMapObject* object = walk.Next())
        ids.push_back(object->GetId());
    return ids;
}

} // namespace

TEST(MIObjectMap, AddsFindsAndRemoves) {
    MIObjectMap map(10, true);
    Object first(1);
    Object second(2);
    EXPECT_TRUE(map.Add(&first));
    EXPECT_TRUE(map.Add(&second));
    EXPECT_EQ(map.Count(), 2);
    EXPECT_EQ(map.Find(1), &first);
    EXPECT_EQ(map.Find(2), &second);
    EXPECT_EQ(map.Find(3), nullptr);
    EXPECT_EQ(map.Remove(1), &first);
    EXPECT_EQ(map.Remove(1), nullptr);
    EXPECT_EQ(map.Find(1), nullptr);
    EXPECT_EQ(map.Count(), 1);
}

TEST(MIObjectMap, RefusesAKeyThatIsThereAlready) {
    MIObjectMap map(10, false);
    Object first(7);
    Object same(7);
    EXPECT_TRUE(map.Add(&first));
    EXPECT_FALSE(map.Add(&same));
    EXPECT_FALSE(map.Add(&first));
    EXPECT_EQ(map.Find(7), &first);
    EXPECT_EQ(map.Count(), 1);
}

TEST(MIObjectMap, RefusesNull) {
    MIObjectMap map(10, true);
    EXPECT_FALSE(map.Add(nullptr));
    EXPECT_EQ(map.Count(), 0);
}

TEST(MIObjectMap, LeavesTheCountsOfItsObjectsAlone) {
    Object object(1);
    {
        MIObjectMap map(10, true);
        map.Add(&object);
        map.Remove(1);
        map.Add(&object);
        map.RemoveAll();
        map.Add(&object);
    }
    EXPECT_EQ(object.references, 1);
}

TEST(MIObjectMap, RemoveAllLetsTheObjectsLive) {
    int destroyed = 0;
    const auto object = std::make_unique<Object>(1, &destroyed);
    MIObjectMap map(10, true);
    map.Add(object.get());
    map.RemoveAll();
    EXPECT_EQ(map.Count(), 0);
    EXPECT_EQ(map.Find(1), nullptr);
    EXPECT_EQ(destroyed, 0);
    EXPECT_TRUE(map.Add(object.get()));
}

TEST(MIObjectMap, DeleteAllDestroysEachObjectWhateverItsCount) {
    int destroyed = 0;
    MIObjectMap map(2, true);
    for (std::uint32_t id = 1; id <= 20; ++id) {
        auto* object = new Object(id, &destroyed);
        object->AddRef();
        map.Add(object);
    }
    map.DeleteAll();
    EXPECT_EQ(destroyed, 20);
    EXPECT_EQ(map.Count(), 0);
    map.DeleteAll();
    EXPECT_EQ(destroyed, 20);
}

TEST(MIObjectMap, TheHashIsTheKeyWithoutItsTwoLowestBits) {
    const MIObjectMap map(10, true);
    EXPECT_EQ(map.HashKey(0), 0U);
    EXPECT_EQ(map.HashKey(3), 0U);
    EXPECT_EQ(map.HashKey(4), 1U);
    EXPECT_EQ(map.HashKey(0xFFFFFFFF), 0x3FFFFFFFU);
}

TEST(MIObjectMap, TheKeyOfAnObjectIsItsIdAndOfNullZero) {
    const MIObjectMap map(10, true);
    const Object object(99);
    EXPECT_EQ(map.KeyOf(&object), 99U);
    EXPECT_EQ(map.KeyOf(nullptr), 0U);
}

TEST(MIObjectMap, HasTwoToThePowerOfTheHashBitsBuckets) {
    EXPECT_EQ(MIObjectMap(10, true).GetBucketCount(), 1024U);
    EXPECT_EQ(MIObjectMap(1, true).GetBucketCount(), 2U);
    EXPECT_EQ(MIObjectMap(0, true).GetBucketCount(), 2U) << "below one counts as one";
    EXPECT_EQ(MIObjectMap(-50, true).GetBucketCount(), 2U);
    EXPECT_EQ(MIObjectMap(31, true).GetBucketCount(), 0x80000000U) << "no memory is taken for empty ones";
    EXPECT_EQ(MIObjectMap(32, true).GetBucketCount(), 1U) << "only five bits count";
    EXPECT_EQ(MIObjectMap(33, true).GetBucketCount(), 2U);
}

TEST(MIObjectMap, WorksWithAnyNumberOfBuckets) {
    for (const std::int32_t bits : {0, 1, 5, 31, 32}) {
        MIObjectMap map(bits, false);
        std::vector<std::unique_ptr<Object>> objects;
        for (std::uint32_t id = 0; id < 100; ++id) {
            objects.push_back(std::make_unique<Object>(id * 0x01234567));
            EXPECT_TRUE(map.Add(objects.back().get()));
        }
        EXPECT_EQ(map.Count(), 100);
        for (const auto& object : objects)
            EXPECT_EQ(map.Find(object->GetId()), object.get());
    }
}

TEST(MIObjectMap, AnIteratorWalksTheBucketsInTheirOrder) {
    MIObjectMap map(2, true); // four buckets: by bits 2 and 3 of the key
    Object objects[] = {Object(12), Object(1), Object(8), Object(17), Object(4), Object(2)};
    for (Object& object : objects)
        map.Add(&object);
    EXPECT_EQ(Walked(map), (std::vector<std::uint32_t>{1, 17, 2, 4, 8, 12}));
    EXPECT_TRUE(Walked(MIObjectMap(4, true)).empty());
}

TEST(MIObjectMap, AnIteratorSurvivesChangesOfTheMap) {
    MIObjectMap map(10, true);
    Object first(4);
    Object second(8);
    Object third(12);
    map.Add(&first);
    map.Add(&second);
    map.Add(&third);
    MIObjectMap::Iterator walk(map);
    EXPECT_EQ(walk.Next(), &first);
    map.Remove(4);
    map.Remove(8);
    EXPECT_EQ(walk.Next(), &third);
    EXPECT_EQ(walk.Next(), nullptr);
    EXPECT_EQ(walk.Next(), nullptr);
    map.RemoveAll();
    EXPECT_EQ(walk.Next(), nullptr);
}

TEST(MIObjectMap, ALockedMapMayBeUsedFromManyThreads) {
    MIObjectMap map(4, true);
    std::atomic<int> mistakes{0};
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (std::uint32_t t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (std::uint32_t n = 0; n < 1000; ++n) {
                Object object(t * 1000 + n);
                mistakes += map.Add(&object) ? 0 : 1;
                mistakes += map.Find(object.GetId()) == &object ? 0 : 1;
                map.Count();
                mistakes += map.Remove(object.GetId()) == &object ? 0 : 1;
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(mistakes, 0);
    EXPECT_EQ(map.Count(), 0);
}
