#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "MLock.h"

/// A list of plain values, pointers mostly, with a lock of its own. Each operation locks for itself; to keep the list
/// still over several of them, or to walk it with begin() and end(), hold the lock with Lock() and Unlock(), or with
/// `std::lock_guard guard(list)`. The list owns nothing that its values point to.   [thread: any]
template <class T>
class MLockedList {
public:
    /// Enters the lock count times; the same thread must leave it as often. A count below 1 does nothing.
    void Lock(int count = 1) {
        for (int i = 0; i < count; ++i)
            m_lock.Enter();
    }
    void Unlock(int count = 1) {
        for (int i = 0; i < count; ++i)
            m_lock.Leave();
    }
    bool TryLock() { return m_lock.TryEnter(); }
    void lock() { Lock(); }
    void unlock() { Unlock(); }
    bool try_lock() { return TryLock(); }

    void Add(const T& value) {
        const std::lock_guard<MLock> guard(m_lock);
        m_values.push_back(value);
    }

    /// Adds value at the end unless the list has it. @return true when it was added.
    bool AddUnique(const T& value) {
        const std::lock_guard<MLock> guard(m_lock);
        if (Holds(value))
            return false;
        m_values.push_back(value);
        return true;
    }

    /// Removes the first entry equal to value. @return false when there is none.
    bool Remove(const T& value) {
        const std::lock_guard<MLock> guard(m_lock);
        const auto found = std::find(m_values.begin(), m_values.end(), value);
        if (found == m_values.end())
            return false;
        m_values.erase(found);
        return true;
    }

    bool Contains(const T& value) const {
        const std::lock_guard<MLock> guard(m_lock);
        return Holds(value);
    }

    std::size_t Count() const {
        const std::lock_guard<MLock> guard(m_lock);
        return m_values.size();
    }

    bool IsEmpty() const { return Count() == 0; }

    void Clear() {
        const std::lock_guard<MLock> guard(m_lock);
        m_values.clear();
    }

    /// Copies the entry at a position, from 0. @return false, and out unchanged, for a position outside.
    bool Get(std::size_t position, T& out) const {
        const std::lock_guard<MLock> guard(m_lock);
        if (position >= m_values.size())
            return false;
        out = m_values[position];
        return true;
    }

    /// All entries as they are now, for a walk without the lock.
    std::vector<T> Snapshot() const {
        const std::lock_guard<MLock> guard(m_lock);
        return m_values;
    }

    /// Empties the list. @return what it held.
    std::vector<T> TakeAll() {
        std::vector<T> taken;
        const std::lock_guard<MLock> guard(m_lock);
        taken.swap(m_values);
        return taken;
    }

    /// For a walk under the caller's lock. Add and Remove during the walk end it, as with any vector.
    auto begin() { return m_values.begin(); }
    auto end() { return m_values.end(); }

private:
    bool Holds(const T& value) const { return std::find(m_values.begin(), m_values.end(), value) != m_values.end(); }

    mutable MLock m_lock;
    std::vector<T> m_values; // under m_lock
};
