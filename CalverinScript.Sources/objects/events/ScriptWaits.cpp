#include "ScriptWaits.h"

#include <utility>

bool ScriptWaits::Begin(WakeUp wakeUp) {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (m_refusing)
        return false;
    m_wakeUp = std::move(wakeUp);
    return true;
}

void ScriptWaits::Finish() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_wakeUp = nullptr;
}

void ScriptWaits::Break() {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (m_wakeUp)
        m_wakeUp();
}

void ScriptWaits::Refuse() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_refusing = true;
    if (m_wakeUp)
        m_wakeUp();
}

void ScriptWaits::Allow() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_refusing = false;
}
