#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ChangeSink.h"
#include "ShowChange.h"

namespace stagehost {

/// Keeps a listener of the feed in place. When it is gone, the listener is not running and never runs again; only a
/// listener that ends its own subscription goes on to its end.
using Subscription = std::shared_ptr<void>;

/// Brings the changes of the show to those who asked for them:
///
/// - every change that comes after the subscription reaches the listener, once;
/// - all listeners hear all changes in one order, and changes of one object in the order in which they happened;
/// - listeners run on the one thread of the feed, never on that of the change;
/// - what is waiting when the feed ends is not told any more.
class ChangeFeed final : public ChangeSink {
public:
    using Listener = std::function<void(const ShowChange&)>;

    ChangeFeed();
    /// Waits for a listener that runs.
    ~ChangeFeed();
    ChangeFeed(const ChangeFeed&) = delete;
    ChangeFeed& operator=(const ChangeFeed&) = delete;

    /// @return ends before the feed does.   [any]
    [[nodiscard]] Subscription Subscribe(Listener listener);

    /// Tells a change.   [any]
    void Tell(ObjectKind kind, const std::string& object, const std::string& property, std::string value);

    /// Waits until every change that has been told so far has been heard. Not to be called by a listener.   [any]
    void Settle();

    /// The number of the last change told so far; a later one is greater.   [any]
    std::uint64_t LastNumber() const;

    bool IsWanted() const override { return m_listenerCount.load() != 0; }
    void ValueChanged(const std::string& name, std::string text) override;

private:
    struct Entry {
        std::recursive_mutex gate;          ///< held while the listener runs; guards listener
        std::shared_ptr<Listener> listener; ///< null when the subscription has ended
        std::uint64_t after = 0;            ///< changes up to this number came before the subscription
    };

    void Serve();
    void Forget(const std::shared_ptr<Entry>& entry);

    std::atomic<int> m_listenerCount{0}; ///< written under the lock, read by every change
    mutable std::mutex m_lock;           ///< guards the fields below
    std::condition_variable m_changed;
    std::condition_variable m_heard;
    std::deque<ShowChange> m_queue;
    std::vector<std::shared_ptr<Entry>> m_entries;
    std::uint64_t m_lastNumber = 0;
    std::uint64_t m_heardNumber = 0; ///< the last change that every listener has heard
    bool m_ending = false;
    std::thread m_thread;
};

} // namespace stagehost
