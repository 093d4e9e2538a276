#include "ChangeFeed.h"

#include <algorithm>

namespace stagehost {

ChangeFeed::ChangeFeed()
    : thread_([this] { Serve(); }) {}

ChangeFeed::~ChangeFeed() {
    {
        const std::lock_guard<std::mutex> hold(lock_);
        ending_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

Subscription ChangeFeed::Subscribe(Listener listener) {
    auto entry = std::make_shared<Entry>();
    entry->listener = std::make_shared<Listener>(std::move(listener));
    const std::lock_guard<std::mutex> hold(lock_);
    entry->after = lastNumber_;
    entries_.push_back(entry);
    ++listenerCount_;
    return {entry.get(), [this, entry](void*) { Forget(entry); }};
}

void ChangeFeed::Tell(ObjectKind kind, const std::string& object, const std::string& property, std::string value) {
    {
        const std::lock_guard<std::mutex> hold(lock_);
        queue_.push_back({++lastNumber_, std::chrono::system_clock::now(), kind, object, property, std::move(value)});
    }
    changed_.notify_one();
}

void ChangeFeed::ValueChanged(const std::string& name, std::string text) {
    Tell(ObjectKind::Variable, name, "Value", std::move(text));
}

void ChangeFeed::Settle() {
    std::unique_lock<std::mutex> hold(lock_);
    heard_.wait(hold, [this, last = lastNumber_] { return heardNumber_ >= last; });
}

std::uint64_t ChangeFeed::LastNumber() const {
    const std::lock_guard<std::mutex> hold(lock_);
    return lastNumber_;
}

void ChangeFeed::Serve() {
    std::unique_lock<std::mutex> hold(lock_);
    for (;;) {
        changed_.wait(hold, [this] { return ending_ || !queue_.empty(); });
        if (ending_)
            return;
        const ShowChange change = std::move(queue_.front());
        queue_.pop_front();
        const auto entries = entries_;
        hold.unlock();
        for (const auto& entry : entries) {
            const std::lock_guard<std::recursive_mutex> gate(entry->gate);
            const auto listener = entry->listener; // a listener may end its own subscription
            if (listener && change.number > entry->after)
                (*listener)(change);
        }
        hold.lock();
        heardNumber_ = change.number;
        heard_.notify_all();
    }
}

void ChangeFeed::Forget(const std::shared_ptr<Entry>& entry) {
    {
        const std::lock_guard<std::mutex> hold(lock_);
        entries_.erase(std::remove(entries_.begin(), entries_.end(), entry), entries_.end());
        --listenerCount_;
    }
    const std::lock_guard<std::recursive_mutex> gate(entry->gate);
    entry->listener = nullptr;
}

} // namespace stagehost
