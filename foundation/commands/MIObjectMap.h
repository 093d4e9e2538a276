#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <vector>

#include "IMapObject.h"
#include "MLock.h"

/// A hash map from a 32-bit key to a counted object. It holds plain pointers and leaves the counts alone: whoever adds
/// an object sees to it that it lives while it is in the map. The destructor leaves the objects alone too.
///
/// There are 2^hashBits buckets, of which only those in use take memory. With `locked` the operations may be called on
/// any thread; without, the map belongs to one thread at a time.
class MIObjectMap {
public:
    /// @param hashBits below 1 counts as 1; then only the lower five bits count
    explicit MIObjectMap(std::int32_t hashBits, bool locked);
    virtual ~MIObjectMap() = default;
    MIObjectMap(const MIObjectMap&) = delete;
    MIObjectMap& operator=(const MIObjectMap&) = delete;

    /// @return false, and nothing added, for null and for a key that is there already.
    virtual bool Add(IMapObject* object);

    /// Takes the object out; it lives on. @return the object, null when the key is unknown.
    virtual IMapObject* Remove(std::uint32_t key);

    /// The object, or null.
    virtual IMapObject* Find(std::uint32_t key) const;

    virtual std::int32_t Count() const;

    /// Empties the map; the objects live on.
    virtual void RemoveAll();

    /// Empties the map and deletes each object by its destructor, whatever its count.
    virtual void DeleteAll();

    /// The key without its two lowest bits; the bucket is this value masked with the number of buckets less one.
    virtual std::uint32_t HashKey(std::uint32_t key) const;

    /// The object's id, 0 for null.
    virtual std::uint32_t KeyOf(const IMapObject* object) const;

    std::uint32_t GetBucketCount() const { return m_buckets; }

    /// Walks the objects bucket by bucket, from the first, and within a bucket from
    /// the oldest on. The map may change during the walk: what is added or removed
    /// behind the iterator's place is or is not seen, nothing else goes wrong.
    class Iterator {
    public:
        explicit Iterator(const MIObjectMap& map)
            : m_map(map) {}

        /// The next object; null at the end.
        IMapObject* Next();

    private:
        const MIObjectMap& m_map;
        std::uint32_t m_bucket = 0;
        std::size_t m_position = 0;
    };

private:
    using Bucket = std::vector<IMapObject*>;
    using Table = std::map<std::uint32_t, Bucket>; // by bucket number; only buckets in use

    std::unique_lock<MLock> Guard() const;
    std::uint32_t BucketOf(std::uint32_t key) const { return HashKey(key) & (m_buckets - 1); }
    Table TakeAll();

    const std::uint32_t m_buckets;
    const bool m_locked;
    mutable MLock m_lock;
    Table m_table;            // under m_lock
    std::int32_t m_count = 0; // under m_lock
};
