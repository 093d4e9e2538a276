#pragma once

#include <list>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

#include "InterlockedCounter.h"

/// The contexts of one kind that the module has not done with, in the order in which they were made. Contexts share it:
/// a host may give up the last reference to one when the device that asked is long gone.
///
/// - Joining, leaving and looking up take the same time, however many there are.
/// - A context leaves at the latest in its destructor; one that nobody holds any more is never handed out.
/// - No lock is held while anybody works on a context that was handed out.   [thread: any]
template <typename Context>
class ContextRegistry {
public:
    void Add(Context* context) {
        const std::lock_guard<std::mutex> guard(m_lock);
        std::list<Context*> added{context};
        m_places.emplace(context, added.begin());
        m_contexts.splice(m_contexts.end(), added);
    }

    /// @return whether it was here. Of several that remove one context, one hears true.
    bool Remove(Context* context) {
        const std::lock_guard<std::mutex> guard(m_lock);
        const auto place = m_places.find(context);
        if (place == m_places.end())
            return false;
        m_contexts.erase(place->second);
        m_places.erase(place);
        return true;
    }

    bool Contains(Context* context) const {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_places.count(context) != 0;
    }

    std::size_t Count() const {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_places.size();
    }

    bool IsEmpty() const { return Count() == 0; }

    /// Adds a reference to a context that is here, for the caller to drop. @return false when it is not.
    bool Hold(Context* context) {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_places.count(context) != 0 && context->TryAddRef();
    }

    /// An answer of the host that is inside the module, from construction to destruction.
    class Visit {
    public:
        explicit Visit(std::shared_ptr<ContextRegistry> registry)
            : m_registry(std::move(registry)) {
            m_registry->m_visits.Increment();
        }
        ~Visit() { m_registry->m_visits.Decrement(); }
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

    private:
        const std::shared_ptr<ContextRegistry> m_registry;
    };
    bool HasVisits() const { return m_visits.Read() != 0; }

    /// All that are here, each with a reference more, for the caller to drop.
    std::vector<Context*> HoldAll() {
        std::vector<Context*> held;
        const std::lock_guard<std::mutex> guard(m_lock);
        held.reserve(m_contexts.size());
        for (Context* context : m_contexts)
            if (context->TryAddRef())
                held.push_back(context);
        return held;
    }

private:
    InterlockedCounter m_visits;
    mutable std::mutex m_lock;
    std::list<Context*> m_contexts;                                                ///< under m_lock
    std::unordered_map<Context*, typename std::list<Context*>::iterator> m_places; ///< under m_lock
};
template <typename Context>
using SharedContextRegistry = std::shared_ptr<ContextRegistry<Context>>;
