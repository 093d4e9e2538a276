#include "ChangeFeed.h"

#include <algorithm>

namespace stagehost {

ChangeFeed::ChangeFeed()
    : m_thread([this] { Serve(); }) {}

ChangeFeed::~ChangeFeed() {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_ending = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

Subscription ChangeFeed::Subscribe(Listener listener) {
    auto entry = std::make_shared<Entry>();
    entry->listener = std::make_shared<Listener>(std::move(listener));
    Subscription subscription(entry.get(), [this, entry](void*) { Forget(entry); });
    const std::lock_guard<std::mutex> hold(m_lock);
    entry->after = m_lastNumber;
    m_entries.push_back(std::move(entry));
    ++m_listenerCount;
    return subscription;
}

void ChangeFeed::Tell(ObjectKind kind, const std::string& object, const std::string& property, std::string value) {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_queue.push_back({++m_lastNumber, std::chrono::system_clock::now(), kind, object, property, std::move(value)});
    }
    m_changed.notify_one();
}

void ChangeFeed::ValueChanged(const std::string& name, std::string text) {
    Tell(ObjectKind::Variable, name, "Value", std::move(text));
}

void ChangeFeed::Settle() {
    std::unique_lock<std::mutex> hold(m_lock);
    m_heard.wait(hold, [this, last = m_lastNumber] { return m_heardNumber >= last; });
}

std::uint64_t ChangeFeed::LastNumber() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_lastNumber;
}

void ChangeFeed::Serve() {
    std::unique_lock<std::mutex> hold(m_lock);
    for (;;) {
        m_changed.wait(hold, [this] { return m_ending || !m_queue.empty(); });
        if (m_ending)
            return;
        const ShowChange change = std::move(m_queue.front());
        m_queue.pop_front();
        const auto entries = m_entries;
        hold.unlock();
        for (const auto& entry : entries) {
            const std::lock_guard<std::recursive_mutex> gate(entry->gate);
            const auto listener = entry->listener; // a listener may end its own subscription
            if (listener && change.number > entry->after)
                (*listener)(change);
        }
        hold.lock();
        m_heardNumber = change.number;
        m_heard.notify_all();
    }
}

/// The entry may not have come into the list, for want of memory.
void ChangeFeed::Forget(const std::shared_ptr<Entry>& entry) {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        const auto place = std::find(m_entries.begin(), m_entries.end(), entry);
        if (place != m_entries.end()) {
            m_entries.erase(place);
            --m_listenerCount;
        }
    }
    const std::lock_guard<std::recursive_mutex> gate(entry->gate);
    entry->listener = nullptr;
}

} // namespace stagehost
