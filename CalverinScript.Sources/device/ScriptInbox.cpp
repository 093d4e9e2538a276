#include "ScriptInbox.h"

bool ScriptInbox::Post(Task task) {
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (m_closed)
            return false;
        m_tasks.push_back(std::move(task));
        if (std::exchange(m_awake, true))
            return true;
    }
    m_wakeUp();
    return true;
}

bool ScriptInbox::Take(Task& out) {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (m_tasks.empty()) {
        m_awake = false;
        return false;
    }
    out = std::move(m_tasks.front());
    m_tasks.pop_front();
    return true;
}

void ScriptInbox::Close() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_closed = true;
}
