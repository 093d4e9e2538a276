#include "CompletionGate.h"

#include <algorithm>
#include <chrono>

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>

namespace {

/// The loop lives on another thread; it quits when it next looks at its events, or at once when it starts.
void QuitLater(QEventLoop* loop) {
    QCoreApplication::postEvent(loop, new QEvent(QEvent::Quit));
}

} // namespace

CompletionGate::Generation CompletionGate::Current(MarshalledCall call) const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_generations[IndexOf(call)];
}

void CompletionGate::Notify(MarshalledCall call) {
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        ++m_generations[IndexOf(call)];
        for (const WaitingLoop& waiting : m_loops)
            if (waiting.call == call)
                QuitLater(waiting.loop);
    }
    m_changed.notify_all();
}

bool CompletionGate::WaitPast(MarshalledCall call, Generation seen, std::uint32_t limitMs) {
    std::unique_lock<std::mutex> guard(m_lock);
    const auto over = [&] { return m_abandoned || m_generations[IndexOf(call)] > seen; };
    if (limitMs == kNoLimit)
        m_changed.wait(guard, over);
    else
        m_changed.wait_for(guard, std::chrono::milliseconds(limitMs), over);
    return m_generations[IndexOf(call)] > seen;
}

void CompletionGate::Abandon() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_abandoned = true;
    m_changed.notify_all();
    for (const WaitingLoop& waiting : m_loops)
        QuitLater(waiting.loop);
}

CompletionGate::JoinLoop::JoinLoop(CompletionGate& gate, MarshalledCall call, QEventLoop& loop)
    : m_gate(gate)
    , m_loop(loop) {
    const std::lock_guard<std::mutex> guard(m_gate.m_lock);
    m_gate.m_loops.push_back({call, &m_loop});
    if (m_gate.m_abandoned)
        QuitLater(&m_loop);
}

CompletionGate::JoinLoop::~JoinLoop() {
    const std::lock_guard<std::mutex> guard(m_gate.m_lock);
    std::vector<WaitingLoop>& loops = m_gate.m_loops;
    loops.erase(std::remove_if(loops.begin(), loops.end(), [this](const WaitingLoop& w) { return w.loop == &m_loop; }),
                loops.end());
}
