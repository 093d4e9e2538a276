#include "CompletionGate.h"

#include <algorithm>
#include <chrono>
#include <memory>

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QThread>
#include <QTimer>

namespace {

/// The host's main thread has events of its own to serve while it waits; the module's plain threads have none.
bool HasEventsToServe() {
    const QCoreApplication* application = QCoreApplication::instance();
    return application != nullptr && application->thread() == QThread::currentThread();
}

} // namespace

/// A nested event loop that is known to the gate while this object lives, so that its call's completion quits it.
class CompletionGate::JoinedLoop {
public:
    JoinedLoop(CompletionGate& gate, Call& call)
        : m_gate(gate)
        , m_call(call) {
        const std::lock_guard<std::mutex> guard(m_gate.m_lock);
        m_gate.m_loops.push_back(this);
        m_call.m_loop = this;
        if (m_gate.m_abandoned || m_call.m_done)
            QuitLater();
    }
    ~JoinedLoop() {
        const std::lock_guard<std::mutex> guard(m_gate.m_lock);
        m_call.m_loop = nullptr;
        std::vector<JoinedLoop*>& loops = m_gate.m_loops;
        loops.erase(std::remove(loops.begin(), loops.end(), this), loops.end());
    }
    JoinedLoop(const JoinedLoop&) = delete;
    JoinedLoop& operator=(const JoinedLoop&) = delete;
    QEventLoop& Loop() { return m_loop; }

    /// The loop quits when it next looks at its events, or at once when it starts. Needs no memory, since nobody would wake it
    /// another time.   [any, under the gate's lock]
    void QuitLater() {
        if (m_quit)
            QCoreApplication::postEvent(&m_loop, m_quit.release());
    }

private:
    CompletionGate& m_gate;
    Call& m_call;
    QEventLoop m_loop;
    std::unique_ptr<QEvent> m_quit = std::make_unique<QEvent>(QEvent::Quit); ///< until it is posted
};

void CompletionGate::Complete(Call& call, bool result) {
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        call.m_done = true;
        call.m_result = result;
        if (call.m_loop != nullptr)
            call.m_loop->QuitLater();
    }
    m_changed.notify_all();
}

bool CompletionGate::Wait(Call& call, std::uint32_t limitMs, bool& result) {
    if (HasEventsToServe())
        WaitInEventLoop(call, limitMs);
    else
        WaitAsleep(call, limitMs);
    const std::lock_guard<std::mutex> guard(m_lock);
    result = call.m_done && call.m_result;
    return call.m_done;
}

void CompletionGate::WaitInEventLoop(Call& call, std::uint32_t limitMs) {
    JoinedLoop joined(*this, call);
    QTimer limit;
    if (limitMs != kNoLimit) {
        limit.setSingleShot(true);
        QObject::connect(&limit, &QTimer::timeout, &joined.Loop(), &QEventLoop::quit);
        limit.start(static_cast<int>(limitMs));
    }
    joined.Loop().exec();
}

void CompletionGate::WaitAsleep(Call& call, std::uint32_t limitMs) {
    std::unique_lock<std::mutex> guard(m_lock);
    const auto over = [&] { return m_abandoned || call.m_done; };
    if (limitMs == kNoLimit)
        m_changed.wait(guard, over);
    else
        m_changed.wait_for(guard, std::chrono::milliseconds(limitMs), over);
}

void CompletionGate::Abandon() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_abandoned = true;
    m_changed.notify_all();
    for (JoinedLoop* loop : m_loops)
        loop->QuitLater();
}
