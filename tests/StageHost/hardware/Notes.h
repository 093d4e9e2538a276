#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

/// What other threads report, for a test that waits for it.
class Notes {
public:
    void Add(const std::string& note) {
        {
            const std::lock_guard<std::mutex> hold(m_lock);
            m_notes.push_back(note);
        }
        m_changed.notify_all();
    }

    std::vector<std::string> All() const {
        const std::lock_guard<std::mutex> hold(m_lock);
        return m_notes;
    }

    /// Waits until a note begins with a text. @return whether one has come within the deadline.
    bool WaitFor(const std::string& text, std::size_t count = 1) {
        std::unique_lock<std::mutex> hold(m_lock);
        return m_changed.wait_for(hold, kDeadline, [&] {
            std::size_t found = 0;
            for (const auto& note : m_notes)
                found += note.rfind(text, 0) == 0 ? 1 : 0;
            return found >= count;
        });
    }

    void Clear() {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_notes.clear();
    }

    static constexpr std::chrono::seconds kDeadline{30};

private:
    mutable std::mutex m_lock; ///< guards m_notes
    std::condition_variable m_changed;
    std::vector<std::string> m_notes;
};
