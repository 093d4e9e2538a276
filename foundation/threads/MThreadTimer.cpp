#include "MThreadTimer.h"

#include "Clock.h"

#include <algorithm>
#include <mutex>

MThreadTimer::MThreadTimer(std::uint32_t periodMs, std::uint32_t resolutionMs)
    : m_periodMs(std::max<std::uint32_t>(periodMs, 1))
    , m_resolutionMs(resolutionMs) {}

MThreadTimer::~MThreadTimer() {
    StopAndWait();
}

std::uint32_t MThreadTimer::Run() {
    while (!StopRequested())
        Sleep(RunPass() ? m_periodMs.load() : kInfinite);
    return 0;
}

bool MThreadTimer::RunPass() {
    const std::uint32_t nowMs = MillisecondClock();
    const std::lock_guard<MLock> guard(m_passLock);
    for (m_next = 0; m_next < m_handlers.size() && !StopRequested();)
        m_handlers[m_next++]->OnTimer(nowMs);
    m_next = 0;
    return !m_handlers.empty();
}

void MThreadTimer::SetPeriod(std::uint32_t periodMs, std::uint32_t resolutionMs) {
    m_periodMs = std::max<std::uint32_t>(periodMs, 1);
    m_resolutionMs = resolutionMs;
}

void MThreadTimer::AddHandler(IThreadTimerHandler* handler) {
    const std::lock_guard<MLock> guard(m_passLock);
    if (!handler || std::find(m_handlers.begin(), m_handlers.end(), handler) != m_handlers.end())
        return;
    m_handlers.push_back(handler);
    if (m_handlers.size() == 1)
        WakeUp();
}

void MThreadTimer::RemoveHandler(IThreadTimerHandler* handler) {
    const std::lock_guard<MLock> guard(m_passLock);
    const auto found = std::find(m_handlers.begin(), m_handlers.end(), handler);
    if (found == m_handlers.end())
        return;
    if (static_cast<std::size_t>(found - m_handlers.begin()) < m_next)
        --m_next;
    m_handlers.erase(found);
}
