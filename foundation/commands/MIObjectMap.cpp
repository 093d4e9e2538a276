#include "MIObjectMap.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace {

constexpr std::uint32_t kHashBitsMask = 0x1F;
constexpr std::uint32_t kHashMask = 0x3FFFFFFF;

std::uint32_t BucketCount(std::int32_t hashBits) {
    return 1U << (static_cast<std::uint32_t>(std::max(hashBits, 1)) & kHashBitsMask);
}

} // namespace

MIObjectMap::MIObjectMap(std::int32_t hashBits, bool locked)
    : m_buckets(BucketCount(hashBits))
    , m_locked(locked) {}

std::unique_lock<MLock> MIObjectMap::Guard() const {
    return m_locked ? std::unique_lock<MLock>(m_lock) : std::unique_lock<MLock>();
}

bool MIObjectMap::Add(IMapObject* object) {
    if (object == nullptr)
        return false;
    const auto guard = Guard();
    const std::uint32_t key = KeyOf(object);
    if (Find(key) != nullptr)
        return false;
    m_table[BucketOf(key)].push_back(object);
    ++m_count;
    return true;
}

IMapObject* MIObjectMap::Remove(std::uint32_t key) {
    const auto guard = Guard();
    IMapObject* object = Find(key);
    if (object == nullptr)
        return nullptr;
    const auto entry = m_table.find(BucketOf(key));
    Bucket& bucket = entry->second;
    bucket.erase(std::find(bucket.begin(), bucket.end(), object));
    if (bucket.empty())
        m_table.erase(entry);
    --m_count;
    return object;
}

IMapObject* MIObjectMap::Find(std::uint32_t key) const {
    const auto guard = Guard();
    const auto entry = m_table.find(BucketOf(key));
    if (entry == m_table.end())
        return nullptr;
    const Bucket& bucket = entry->second;
    const auto found =
        std::find_if(bucket.begin(), bucket.end(), [&](IMapObject* object) { return KeyOf(object) == key; });
    return found == bucket.end() ? nullptr : *found;
}

std::int32_t MIObjectMap::Count() const {
    const auto guard = Guard();
    return m_count;
}

void MIObjectMap::RemoveAll() {
    TakeAll();
}

void MIObjectMap::DeleteAll() {
    for (const auto& entry : TakeAll()) {
        for (IMapObject* object : entry.second)
            std::default_delete<IMapObject>()(object);
    }
}

MIObjectMap::Table MIObjectMap::TakeAll() {
    const auto guard = Guard();
    m_count = 0;
    return std::exchange(m_table, {});
}

std::uint32_t MIObjectMap::HashKey(std::uint32_t key) const {
    return (key >> 2) & kHashMask;
}

std::uint32_t MIObjectMap::KeyOf(const IMapObject* object) const {
    return object != nullptr ? object->GetId() : 0;
}

IMapObject* MIObjectMap::Iterator::Next() {
    const auto guard = m_map.Guard();
    auto entry = m_map.m_table.lower_bound(m_bucket);
    if (entry != m_map.m_table.end() && entry->first == m_bucket && m_position >= entry->second.size())
        ++entry;
    if (entry == m_map.m_table.end())
        return nullptr;
    if (entry->first != m_bucket)
        m_position = 0;
    m_bucket = entry->first;
    return entry->second[m_position++];
}
