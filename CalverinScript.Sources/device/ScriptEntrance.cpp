#include "ScriptEntrance.h"

#include <chrono>
#include <new>

#include <QCoreApplication>
#include <QEvent>
#include <QScriptEngine>
#include <QThread>

#include "RunWithinMemory.h"
#include "ScriptStopper.h"
#include "TimeLimit.h"

namespace {

/// Posted to the entrance when the script thread has something to look at.
const QEvent::Type kWakeUpEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

constexpr int kAbortRetryMs = 5;

/// How long tasks are run before the thread looks at its timers.
constexpr std::chrono::milliseconds kTurn(5);

} // namespace

ScriptEntrance::ScriptEntrance(std::recursive_mutex& lock, const std::atomic<bool>& ending,
                               std::function<void()> runDeferred, std::function<void()> onShortage, QObject* parent)
    : QObject(parent)
    , m_lock(lock)
    , m_ending(ending)
    , m_runDeferred(std::move(runDeferred))
    , m_onShortage(std::move(onShortage))
    , m_thread(QThread::currentThread())
    , m_stopper(std::make_unique<ScriptStopper>())
    , m_reserve(new QEvent(kWakeUpEvent))
    , m_inbox([this] { WakeUp(); }) {}

ScriptEntrance::~ScriptEntrance() {
    delete m_reserve.load();
}

void ScriptEntrance::LookAt(const QString& text) {
    m_stopper->LookAt(text);
}

bool ScriptEntrance::HasStoppedScript() const {
    return m_stopper->HasStopped();
}

ScriptEntrance::Entry::Entry(ScriptEntrance& entrance)
    : m_entrance(entrance)
    , m_onScriptThread(entrance.IsOnScriptThread()) {
    m_entrance.m_lock.lock();
    if (m_onScriptThread)
        ++m_entrance.m_depth;
}

ScriptEntrance::Entry::~Entry() {
    const bool outermost = m_onScriptThread && --m_entrance.m_depth == 0;
    if (outermost && m_entrance.m_deferred)
        m_entrance.WakeUp();
    m_entrance.m_lock.unlock();
}

/// The engine takes an abort only while one of its contexts is open, which a function that was called from here is
/// not. A context that stays open makes it one always, and costs nothing; one that is opened for the abort needs room
/// on a stack that the script may have filled.
void ScriptEntrance::SetEngine(QScriptEngine& engine) {
    m_engine = &engine;
    engine.pushContext();
}

bool ScriptEntrance::IsOnScriptThread() const {
    return QThread::currentThread() == m_thread.load();
}

/// A wake-up that is lost would be lost for good: there is always one in reserve, or on its way.
void ScriptEntrance::WakeUp() {
    auto* wakeUp = new (std::nothrow) QEvent(kWakeUpEvent);
    if (wakeUp == nullptr)
        wakeUp = m_reserve.exchange(nullptr);
    if (wakeUp != nullptr)
        QCoreApplication::postEvent(this, wakeUp);
}

bool ScriptEntrance::event(QEvent* received) {
    if (received->type() != kWakeUpEvent)
        return QObject::event(received);
    if (m_reserve == nullptr)
        m_reserve = new (std::nothrow) QEvent(kWakeUpEvent);
    if (!RunWithinMemory([this] { TakeTurn(); }))
        WakeUp();
    return true;
}

/// Nothing may be thrown through the thread's event loop. Who waits for a task hears of its end all the same.
void ScriptEntrance::RunTask(const ScriptInbox::Task& task) {
    if (!RunWithinMemory(task))
        m_onShortage();
}

/// Runs inside a script too, since a running engine lets its thread process events now and then. Then nothing is
/// taken; the only thing that is served there is the end of the device.
void ScriptEntrance::TakeTurn() {
    if (IsInside()) {
        m_deferred = true;
        if (m_ending)
            Abort();
        return;
    }
    m_deferred = false;
    m_runDeferred();
    const TimeLimit turn{kTurn};
    ScriptInbox::Task task;
    while (m_inbox.Take(task)) {
        RunTask(task);
        task = nullptr;
        if (turn.IsOver()) {
            WakeUp();
            return;
        }
    }
}

void ScriptEntrance::Abort() {
    if (IsInside() && m_engine != nullptr) {
        if (m_ending)
            m_stopper->Stop(*m_engine);
        else
            m_engine->abortEvaluation();
    }
    if (m_abortTimer == 0)
        m_abortTimer = startTimer(kAbortRetryMs);
}

void ScriptEntrance::timerEvent(QTimerEvent* /*fired*/) {
    if (IsInside())
        Abort();
}

void ScriptEntrance::LeaveThread() {
    if (m_abortTimer != 0)
        killTimer(m_abortTimer);
    m_abortTimer = 0;
}
