#include "CommandQueue.h"

#include <utility>

std::unique_ptr<MCommandObject> CommandQueue::Append(std::unique_ptr<MCommandObject> command, std::int32_t maxQueued) {
    const std::lock_guard<std::mutex> guard(m_mutex);
    std::unique_ptr<MCommandObject> dropped(m_count > maxQueued ? Unlink() : nullptr);
    MCommandObject* newest = command.release();
    newest->m_nextQueued = nullptr;
    (m_tail != nullptr ? m_tail->m_nextQueued : m_head) = newest;
    m_tail = newest;
    ++m_count;
    return dropped;
}

std::unique_ptr<MCommandObject> CommandQueue::TakeOldest() {
    const std::lock_guard<std::mutex> guard(m_mutex);
    return std::unique_ptr<MCommandObject>(m_head != nullptr ? Unlink() : nullptr);
}

MCommandObject* CommandQueue::Unlink() {
    MCommandObject* oldest = m_head;
    m_head = std::exchange(oldest->m_nextQueued, nullptr);
    if (m_head == nullptr)
        m_tail = nullptr;
    --m_count;
    return oldest;
}

void CommandQueue::Clear() {
    MCommandObject* command = nullptr;
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        command = std::exchange(m_head, nullptr);
        m_tail = nullptr;
        m_count = 0;
    }
    while (command != nullptr) {
        const std::unique_ptr<MCommandObject> gone(command);
        command = gone->m_nextQueued;
    }
}

std::int32_t CommandQueue::Count() const {
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_count;
}
