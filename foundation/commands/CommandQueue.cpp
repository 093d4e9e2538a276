#include "CommandQueue.h"

#include <algorithm>
#include <utility>

std::unique_ptr<MCommandObject> CommandQueue::Append(std::unique_ptr<MCommandObject> command, std::int32_t maxQueued) {
    const std::lock_guard<std::mutex> guard(m_mutex);
    std::unique_ptr<MCommandObject> dropped(m_count > maxQueued ? Unlink() : nullptr);
    MCommandObject* newest = command.release();
    newest->m_nextQueued = nullptr;
    (m_tail != nullptr ? m_tail->m_nextQueued : m_head) = newest;
    m_tail = newest;
    ++m_count;
    if (!m_keeps)
        m_old = m_count;
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
    m_old = std::max(m_old - 1, 0);
    return oldest;
}

CommandQueue::~CommandQueue() {
    KeepFromHere(false);
    Clear();
}

void CommandQueue::Clear() {
    MCommandObject* command = UnlinkOld();
    while (command != nullptr) {
        const std::unique_ptr<MCommandObject> gone(command);
        command = gone->m_nextQueued;
    }
}

/// @return the commands that are not kept, linked, and the caller's.
MCommandObject* CommandQueue::UnlinkOld() {
    const std::lock_guard<std::mutex> guard(m_mutex);
    MCommandObject* const oldest = m_head;
    MCommandObject* last = nullptr;
    for (; m_old > 0; --m_old, --m_count)
        last = std::exchange(m_head, m_head->m_nextQueued);
    if (last == nullptr)
        return nullptr;
    last->m_nextQueued = nullptr;
    if (m_head == nullptr)
        m_tail = nullptr;
    return oldest;
}

void CommandQueue::KeepFromHere(bool keeps) {
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (!keeps || !m_keeps)
        m_old = m_count;
    m_keeps = keeps;
}

std::int32_t CommandQueue::Count() const {
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_count;
}
