#include "ScriptWaits.h"

#include <algorithm>
#include <utility>

bool ScriptWaits::Begin(WakeUp wakeUp) {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (m_refusal != Refusal::None)
        return false;
    m_wakeUp = std::move(wakeUp);
    return true;
}

void ScriptWaits::Finish() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_wakeUp = nullptr;
}

void ScriptWaits::RefuseFor(Refusal what) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_refusal = std::max(m_refusal, what);
    m_closed = true;
    if (m_wakeUp)
        m_wakeUp();
}

void ScriptWaits::EndRun() {
    RefuseFor(Refusal::ThisRun);
}

void ScriptWaits::BeginStopFunction() {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (m_refusal == Refusal::ThisRun)
        m_refusal = Refusal::None;
}

void ScriptWaits::Refuse() {
    RefuseFor(Refusal::All);
}

void ScriptWaits::Reopen() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_closed = false;
}

void ScriptWaits::Allow() {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (!m_closed)
        m_refusal = Refusal::None;
}
