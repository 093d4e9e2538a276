#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

#include "RunWithinMemory.h"

/// Objects that their owners have done with while somebody is still inside. They are looked through now and then, and
/// those that everybody has left are destroyed.
///
/// - Each object is destroyed once, by the sweep that finds it ended.
/// - No lock is held while an object goes: its destructor may set others aside, and sweep.
/// - Objects that are still here when this goes are left alone: somebody is inside them.   [thread: any]
template <typename Object>
class SetAside {
public:
    /// @param hasEnded whether nobody is inside any more; asked under the lock, so it must not come back here.
    /// @param destroy ends an object's life.
    SetAside(std::function<bool(const Object&)> hasEnded, std::function<void(Object*)> destroy)
        : m_hasEnded(std::move(hasEnded))
        , m_destroy(std::move(destroy)) {}
    SetAside(const SetAside&) = delete;
    SetAside& operator=(const SetAside&) = delete;

    /// Takes over an object, ended or not. Where there is no memory to remember one that has not, it is left alone.
    void Add(Object* object) {
        if (!RunWithinMemory([&] { Remember(object); }) && m_hasEnded(*object))
            m_destroy(object);
    }

    /// Destroys the objects that have ended since. @return how many are left.
    std::size_t Sweep() {
        while (Object* object = TakeEnded())
            m_destroy(object);
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_objects.size();
    }

private:
    void Remember(Object* object) {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_objects.push_back(object);
    }

    Object* TakeEnded() {
        const std::lock_guard<std::mutex> guard(m_lock);
        const auto hasEnded = [this](const Object* object) { return m_hasEnded(*object); };
        const auto found = std::find_if(m_objects.begin(), m_objects.end(), hasEnded);
        if (found == m_objects.end())
            return nullptr;
        Object* const object = *found;
        m_objects.erase(found);
        return object;
    }

    const std::function<bool(const Object&)> m_hasEnded;
    const std::function<void(Object*)> m_destroy;
    std::mutex m_lock;
    std::vector<Object*> m_objects; ///< under m_lock
};
