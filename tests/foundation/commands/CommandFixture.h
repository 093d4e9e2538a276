#pragma once

#include <algorithm>
#include <atomic>
#include <mutex>
#include <vector>

#include "ICommandObjectHandler.h"
#include "MCommandObject.h"

/// Stands for the requests behind commands: the user data of a command is the address of its request.
class Requests : public ICommandObjectHandler {
public:
    void OnCommandCreated(void* userData) override {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_begun.push_back(userData);
    }
    void OnCommandDestroyed(void* userData) override {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_ended.push_back(userData);
    }

    std::size_t Begun() const { return Size(m_begun); }
    std::size_t Ended() const { return Size(m_ended); }
    bool HasEnded(const void* userData) const {
        const std::lock_guard<std::mutex> guard(m_mutex);
        return std::count(m_ended.begin(), m_ended.end(), userData) == 1;
    }

private:
    std::size_t Size(const std::vector<void*>& list) const {
        const std::lock_guard<std::mutex> guard(m_mutex);
        return list.size();
    }

    mutable std::mutex m_mutex;
    std::vector<void*> m_begun; // under m_mutex
    std::vector<void*> m_ended; // under m_mutex
};
