#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace stagehost {

/// Handlers of a module, each called until it is removed:
///
/// - when Remove comes back no other thread is inside the handler, and none enters it any more;
/// - a handler may remove itself, and add and remove others;
/// - no lock but the handler's own gate is held while it runs.
template <typename Handler>
class ModuleHandlers {
public:
    /// A handler that is known already keeps its place and gets the new mask.   [any]
    void Add(Handler* handler, std::uint32_t mask = ~0u) {
        const std::lock_guard<std::mutex> hold(m_lock);
        const auto found = FindLocked(handler);
        if (found != m_entries.end())
            (*found)->mask = mask;
        else
            m_entries.push_back(std::make_shared<Entry>(handler, mask));
    }

    /// @return whether it was known.   [any]
    bool Remove(Handler* handler) {
        std::shared_ptr<Entry> removed;
        {
            const std::lock_guard<std::mutex> hold(m_lock);
            const auto found = FindLocked(handler);
            if (found == m_entries.end())
                return false;
            removed = *found;
            m_entries.erase(found);
        }
        const std::lock_guard<std::recursive_mutex> gate(removed->gate);
        removed->handler = nullptr;
        return true;
    }

    bool IsEmpty() const {
        const std::lock_guard<std::mutex> hold(m_lock);
        return m_entries.empty();
    }

    /// Calls all that want one of the bits.   [any]
    template <typename Call>
    void ForEach(std::uint32_t bits, Call call) {
        for (const auto& entry : Snapshot(bits)) {
            const std::lock_guard<std::recursive_mutex> gate(entry->gate);
            if (entry->handler != nullptr)
                call(*entry->handler);
        }
    }

    template <typename Call>
    void ForEach(Call call) {
        ForEach(~0u, call);
    }

private:
    struct Entry {
        Entry(Handler* one, std::uint32_t bits)
            : handler(one)
            , mask(bits) {}

        std::recursive_mutex gate; ///< held while the handler runs; guards handler
        Handler* handler;          ///< null when removed
        std::uint32_t mask;        ///< guarded by the list's lock
    };
    using Entries = std::vector<std::shared_ptr<Entry>>;

    Entries Snapshot(std::uint32_t bits) const {
        Entries wanted;
        const std::lock_guard<std::mutex> hold(m_lock);
        std::copy_if(m_entries.begin(), m_entries.end(), std::back_inserter(wanted),
                     [&](const auto& entry) { return (entry->mask & bits) != 0; });
        return wanted;
    }

    typename Entries::iterator FindLocked(Handler* handler) {
        return std::find_if(m_entries.begin(), m_entries.end(), [&](const auto& entry) {
            return entry->handler == handler; // only the list writes it, under this lock first
        });
    }

    mutable std::mutex m_lock; ///< guards m_entries
    Entries m_entries;
};

} // namespace stagehost
