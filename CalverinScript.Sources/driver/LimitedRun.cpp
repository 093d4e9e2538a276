#include "LimitedRun.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>

#include <QCoreApplication>
#include <QEvent>
#include <QScriptEngine>
#include <QThread>

#include "RunWithinMemory.h"
#include "ScriptStopper.h"
#include "StoppableLoop.h"
#include "TimeLimit.h"

namespace {

constexpr int kLookAtEventsMs = 10;                 ///< how often a running engine looks at its thread's events
constexpr std::chrono::milliseconds kAbortEvery(5); ///< between two scripts there is nothing to abort

/// Ends the script of an engine from an event that the running engine lets through.
class Aborter final : public QObject {
public:
    Aborter(QScriptEngine& engine, const QString& text)
        : m_engine(engine) {
        if (!text.isNull())
            m_stopper.LookAt(text);
    }

protected:
    bool event(QEvent* received) override {
        if (received->type() != QEvent::User)
            return QObject::event(received);
        m_stopper.Stop(m_engine);
        return true;
    }

private:
    QScriptEngine& m_engine;
    ScriptStopper m_stopper;
};

} // namespace

struct LimitedRun::State {
    std::mutex lock;
    std::condition_variable changed;
    bool over = false;                              ///< under lock, as are the next four
    bool late = false;                              ///< the limit has passed
    bool isShort = false;                           ///< of memory
    Aborter* aborter = nullptr;                     ///< on the work's thread
    const std::function<void()>* request = nullptr; ///< waits for the caller's thread
    std::atomic<bool> stop{false};                  ///< what native loops look at
};

LimitedRun::Outcome LimitedRun::Run(const std::function<void()>& work) {
    State state;
    m_state = &state;
    StoppableLoop::SetStopFlag(m_engine, &state.stop);
    m_engine.setProcessEventsInterval(kLookAtEventsMs);
    const std::unique_ptr<QThread> thread(QThread::create([this, &state, &work] {
        std::optional<Aborter> aborter;
        bool isDone = false;
        RunWithinMemory([&] {
            aborter.emplace(m_engine, m_text);
            m_engine.pushContext(); // an engine takes an abort only while one of its contexts is open
            {
                const std::lock_guard<std::mutex> guard(state.lock);
                state.aborter = &*aborter;
            }
            isDone = RunWithinMemory(work);
            m_engine.popContext();
        });
        const std::lock_guard<std::mutex> guard(state.lock);
        state.isShort = state.isShort || !isDone;
        state.aborter = nullptr;
        state.over = true;
        state.changed.notify_all();
    }));
    thread->start();
    const bool hasThread = thread->isRunning() || thread->isFinished();
    if (hasThread)
        Wait(state);
    thread->wait();
    StoppableLoop::SetStopFlag(m_engine, nullptr);
    m_engine.setProcessEventsInterval(-1);
    m_state = nullptr;
    if (!hasThread)
        return Outcome::NoThread;
    if (state.isShort)
        return Outcome::NoMemory;
    return state.late ? Outcome::Late : Outcome::InTime;
}

void LimitedRun::Wait(State& state) const {
    const TimeLimit limit{m_limit};
    std::unique_lock<std::mutex> guard(state.lock);
    const auto called = [&state] { return state.over || state.request != nullptr; };
    while (!state.over) {
        const bool isCalled = state.late ? state.changed.wait_for(guard, kAbortEvery, called)
                                         : state.changed.wait_until(guard, limit.End(), called);
        if (state.request != nullptr)
            Serve(state, guard);
        else if (!isCalled)
            Abort(state);
    }
}

/// The host may come back from within, so it is called without the lock.
void LimitedRun::Serve(State& state, std::unique_lock<std::mutex>& guard) {
    const std::function<void()>* request = state.request;
    if (!state.late) {
        guard.unlock();
        const bool isAnswered = RunWithinMemory(*request);
        guard.lock();
        state.isShort = state.isShort || !isAnswered;
    }
    state.request = nullptr;
    state.changed.notify_all();
}

void LimitedRun::Abort(State& state) {
    state.late = true;
    state.stop = true;
    if (state.aborter != nullptr) // it is asked again soon
        RunWithinMemory([&] { QCoreApplication::postEvent(state.aborter, new QEvent(QEvent::User)); });
}

void LimitedRun::OnCallersThread(const std::function<void()>& request) {
    std::unique_lock<std::mutex> guard(m_state->lock);
    if (m_state->late)
        return;
    m_state->request = &request;
    m_state->changed.notify_all();
    m_state->changed.wait(guard, [this] { return m_state->request == nullptr; });
}

QString AnalysisFailure(LimitedRun::Outcome outcome, std::chrono::milliseconds limit) {
    switch (outcome) {
    case LimitedRun::Outcome::Late:
        return QStringLiteral("The analysis was ended after %1 s: the script does not come back.")
            .arg(limit.count() / 1000.0);
    case LimitedRun::Outcome::NoThread:
        return QStringLiteral("The script was not analysed: the system has no thread left.");
    case LimitedRun::Outcome::NoMemory:
        return QStringLiteral("The script was not analysed: there is not enough memory.");
    case LimitedRun::Outcome::InTime:
        break;
    }
    return QString();
}
