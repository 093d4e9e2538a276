#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Deadline.h"

namespace plain {

/// What a fake was asked, in order, with the moment of each call. Any thread notes and reads.
class CallBook {
public:
    using Moment = std::chrono::steady_clock::time_point;

    /// Called with each call before it is answered, under no lock: may call back, wait or count.
    std::function<void(const std::string& call)> onCall;

    void Note(const std::string& call) {
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            m_calls.push_back(call);
            m_moments.push_back(std::chrono::steady_clock::now());
            m_changed.notify_all();
        }
        if (onCall)
            onCall(call);
    }
    /// The calls since the last time that they were taken, blanks between.
    std::string Take() {
        const std::lock_guard<std::mutex> guard(m_lock);
        std::string text;
        for (const std::string& call : m_calls)
            text += (text.empty() ? "" : " ") + call;
        m_calls.clear();
        m_moments.clear();
        return text;
    }
    std::vector<Moment> Moments() const {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_moments;
    }
    std::size_t CountOf(const std::string& call) const {
        const std::lock_guard<std::mutex> guard(m_lock);
        return static_cast<std::size_t>(std::count(m_calls.begin(), m_calls.end(), call));
    }
    /// @return false when the call does not come before the deadline.
    bool WaitFor(const std::string& call, std::size_t count = 1) const {
        std::unique_lock<std::mutex> guard(m_lock);
        return m_changed.wait_for(guard, std::chrono::milliseconds(kDeadlineMs), [&] {
            return static_cast<std::size_t>(std::count(m_calls.begin(), m_calls.end(), call)) >= count;
        });
    }

private:
    mutable std::mutex m_lock;
    mutable std::condition_variable m_changed;
    std::vector<std::string> m_calls;
    std::vector<Moment> m_moments;
};

/// The handlers of a fake resource. Removing one waits until no other thread is inside it, as the contract asks.
template <typename Handler>
class HandlerBook {
public:
    void Add(Handler* handler) {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (std::find(m_handlers.begin(), m_handlers.end(), handler) == m_handlers.end())
            m_handlers.push_back(handler);
    }
    void Remove(Handler* handler) {
        std::unique_lock<std::mutex> guard(m_lock);
        m_handlers.erase(std::remove(m_handlers.begin(), m_handlers.end(), handler), m_handlers.end());
        const auto isOthers = [&](const Inside& inside) {
            return inside.handler == handler && inside.thread != std::this_thread::get_id();
        };
        m_changed.wait(guard, [&] { return std::none_of(m_inside.begin(), m_inside.end(), isOthers); });
    }
    std::size_t Count() const {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_handlers.size();
    }
    Handler* First() const {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_handlers.empty() ? nullptr : m_handlers.front();
    }
    /// Calls each handler that is still there when its turn comes.
    template <typename Call>
    void Tell(Call call) {
        std::unique_lock<std::mutex> guard(m_lock);
        const std::vector<Handler*> all = m_handlers;
        for (Handler* handler : all) {
            if (std::find(m_handlers.begin(), m_handlers.end(), handler) == m_handlers.end())
                continue;
            m_inside.push_back({handler, std::this_thread::get_id()});
            guard.unlock();
            call(*handler);
            guard.lock();
            const auto isMine = [&](const Inside& inside) {
                return inside.handler == handler && inside.thread == std::this_thread::get_id();
            };
            m_inside.erase(std::find_if(m_inside.begin(), m_inside.end(), isMine));
            m_changed.notify_all();
        }
    }

private:
    struct Inside {
        Handler* handler;
        std::thread::id thread;
    };

    mutable std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<Handler*> m_handlers;
    std::vector<Inside> m_inside;
};

} // namespace plain
