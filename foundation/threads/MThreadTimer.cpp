#include "MThreadTimer.h"

#include <algorithm>

#include "Clock.h"

MThreadTimer::MThreadTimer(std::uint32_t periodMs, std::uint32_t resolutionMs, std::chrono::milliseconds patience)
    : m_passes(patience)
    , m_periodMs(std::max<std::uint32_t>(periodMs, 1))
    , m_resolutionMs(resolutionMs) {}

MThreadTimer::~MThreadTimer() {
    StopAndWait();
}

std::uint32_t MThreadTimer::Run() {
    const auto isStopped = [this] { return StopRequested(); };
    while (!StopRequested()) {
        const auto priority = static_cast<ThreadPriority>(GetPriority());
        const bool called = m_passes.Run(MillisecondClock(), isStopped, GetStackSize(), priority);
        Sleep(called ? m_periodMs.load() : kInfinite);
    }
    m_passes.End();
    return 0;
}

void MThreadTimer::SetPeriod(std::uint32_t periodMs, std::uint32_t resolutionMs) {
    m_periodMs = std::max<std::uint32_t>(periodMs, 1);
    m_resolutionMs = resolutionMs;
}

void MThreadTimer::AddHandler(IThreadTimerHandler* handler) {
    if (m_passes.Add(handler))
        WakeUp();
}

bool MThreadTimer::RemoveHandler(IThreadTimerHandler* handler) {
    return m_passes.Remove(handler);
}
