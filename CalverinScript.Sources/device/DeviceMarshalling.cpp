#include "MCalverinScript_Device.h"

#include <chrono>

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QScriptContext>
#include <QScriptEngine>
#include <QTimer>
#include <QTimerEvent>

#include "DeviceMarshalling.h"
#include "MarshalledCallTable.h"
#include "MScriptThread.h"
#include "ScriptEntry.h"
#include "ScriptGlobals.h"

static_assert(MarshalledCallTable::InOrder(), "the table follows the enumeration");

namespace {

/// Posted to the device when its inbox has work.
const QEvent::Type kDrainEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

constexpr int kAbortRetryMs = 5;

/// How long tasks are run before the thread looks at its timers.
constexpr std::chrono::milliseconds kTurn(5);

/// The host's main thread has events of its own to serve while it waits; the module's plain threads have none.
bool HasEventsToServe() {
    const QCoreApplication* application = QCoreApplication::instance();
    return application != nullptr && application->thread() == QThread::currentThread();
}

} // namespace

MCalverinScript_Device::ScriptEntry::ScriptEntry(MCalverinScript_Device& owner)
    : m_device(owner)
    , m_onScriptThread(owner.OnScriptThread()) {
    m_device.mutex.lock();
    if (m_onScriptThread)
        ++m_device.entryDepth;
}

MCalverinScript_Device::ScriptEntry::~ScriptEntry() {
    const bool outermost = m_onScriptThread && --m_device.entryDepth == 0;
    if (outermost && (m_device.drainDeferred || !m_device.deferredTimers.isEmpty()))
        m_device.WakeScriptThread();
    m_device.mutex.unlock();
}

bool MCalverinScript_Device::OnScriptThread() const {
    return QThread::currentThread() == threadId.load();
}

void MCalverinScript_Device::OnScriptThreadStarted(MScriptThread* thread) {
    threadId = thread;
}

void MCalverinScript_Device::OnScriptThreadEnding() {
    ClearTimers();
    if (abortTimer != 0)
        killTimer(abortTimer);
    moveToThread(homeThread);
    threadLeft = true;
}

/// Each request signal only leaves a task in the inbox, on the emitting thread, so that requests run in order, never inside
/// a running script, and a burst of them wakes the script thread once.
void MCalverinScript_Device::ConnectSignals() {
    using Device = MCalverinScript_Device;
    const auto deliver = [this](auto signal, auto slot) {
        connect(
            this, signal, this,
            [this, slot](auto... arguments) {
                return inbox.Post([this, slot, arguments...] { (this->*slot)(arguments...); });
            },
            Qt::DirectConnection);
    };
    deliver(&Device::SignalLoadScriptCommand, &Device::SlotLoadScriptCommand);
    deliver(&Device::SignalEvaluateScriptCommand, &Device::SlotEvaluateScriptCommand);
    deliver(&Device::SignalEvaluateScript, &Device::SlotEvaluateScript);
    deliver(&Device::SignalExecuteScriptFunction, &Device::SlotExecuteScriptFunction);
    deliver(&Device::SignalExecuteScript_mStop, &Device::SlotExecuteScript_mStop);
    deliver(&Device::SignalExecuteCallBack, &Device::SlotExecuteCallBack);
    deliver(&Device::SignalOnPropertyChange, &Device::SlotOnPropertyChange);
    qRegisterMetaType<MScriptParamList>("MScriptParamList");
    deliver(&Device::SignalExecuteScriptEventCallBack, &Device::SlotExecuteScriptEventCallBack);
    connect(this, &Device::SignalShowDebugger, this, &Device::SlotShowDebugger);
}

void MCalverinScript_Device::WakeScriptThread() {
    QCoreApplication::postEvent(this, new QEvent(kDrainEvent));
}

bool MCalverinScript_Device::event(QEvent* received) {
    if (received->type() != kDrainEvent)
        return QObject::event(received);
    DrainInbox();
    return true;
}

/// Runs inside a script too, since a running engine lets its thread process events now and then. Then nothing is taken; the
/// only thing that is served there is the end of the device. A turn has an end even when tasks come faster than they are run:
/// the timers of the script have theirs in between.
void MCalverinScript_Device::DrainInbox() {
    if (entryDepth > 0) {
        drainDeferred = true;
        if (ending)
            AbortScript();
        return;
    }
    drainDeferred = false;
    while (!deferredTimers.isEmpty())
        FireTimer(deferredTimers.takeFirst());
    const auto end = std::chrono::steady_clock::now() + kTurn;
    ScriptInbox::Task task;
    while (inbox.Take(task)) {
        task();
        task = nullptr;
        if (std::chrono::steady_clock::now() >= end) {
            WakeScriptThread();
            return;
        }
    }
}

/// The engine takes an abort from inside `evaluate` only, while most scripts run in a function that was called. So the abort
/// is asked for by a small evaluation of its own; the engine keeps it for the script around it, which cannot catch it. Between
/// two calls into the script there is nothing to abort, so it is tried until the thread has left the script.
void MCalverinScript_Device::AbortScript() {
    QScriptContext* context = engine->pushContext();
    const QScriptValue abort = engine->newFunction([](QScriptContext*, QScriptEngine* caller) {
        caller->abortEvaluation();
        return QScriptValue();
    });
    context->activationObject().setProperty(QStringLiteral("abort"), abort);
    engine->evaluate(QStringLiteral("abort()"));
    engine->popContext();
    if (abortTimer == 0)
        abortTimer = startTimer(kAbortRetryMs);
}

void MCalverinScript_Device::timerEvent(QTimerEvent* fired) {
    const int id = fired->timerId();
    if (id == abortTimer && entryDepth > 0)
        AbortScript();
    else if (entryDepth == 0)
        FireTimer(id);
    else if (!deferredTimers.contains(id))
        deferredTimers.append(id);
}

void MCalverinScript_Device::Finish(MarshalledCall call, bool result) {
    const MarshalledCallRow& row = MarshalledCallTable::RowOf(call);
    this->*row.result = result;
    if (row.finished != nullptr)
        Q_EMIT(this->*row.finished)();
    gate.Notify(call);
}

void MCalverinScript_Device::WaitInEventLoop(MarshalledCall call, CompletionGate::Generation seen) {
    const MarshalledCallRow& row = MarshalledCallTable::RowOf(call);
    QEventLoop loop;
    const CompletionGate::JoinLoop joined(gate, call, loop);
    QTimer limit;
    if (row.limitMs != CompletionGate::kNoLimit) {
        limit.setSingleShot(true);
        connect(&limit, &QTimer::timeout, &loop, &QEventLoop::quit);
        limit.start(static_cast<int>(row.limitMs));
    }
    if (gate.Current(call) == seen)
        loop.exec();
}

/// Asks with the emission and waits for the next completion of that kind, whichever call it answers.
template <typename Emit>
bool MCalverinScript_Device::Marshal(MarshalledCall call, Emit emitRequest) {
    const MarshalledCallRow& row = MarshalledCallTable::RowOf(call);
    const CompletionGate::Generation seen = gate.Current(call);
    if (!emitRequest())
        return false;
    if (HasEventsToServe())
        WaitInEventLoop(call, seen);
    else
        gate.WaitPast(call, seen, row.limitMs);
    return this->*row.result;
}

bool MCalverinScript_Device::LoadScriptCommand(const char* fileName, bool stopMode) {
    if (stopMode || OnScriptThread())
        return SlotLoadScriptCommand(fileName, stopMode);
    return Marshal(MarshalledCall::LoadScriptCommand,
                   [&] { return Q_EMIT SignalLoadScriptCommand(fileName, stopMode); });
}

bool MCalverinScript_Device::EvaluateScriptCommand(const QString& text, bool stopMode) {
    if (stopMode || OnScriptThread())
        return SlotEvaluateScriptCommand(text, stopMode);
    return Marshal(MarshalledCall::EvaluateScriptCommand,
                   [&] { return Q_EMIT SignalEvaluateScriptCommand(text, stopMode); });
}

bool MCalverinScript_Device::EvaluateScript(const QString& text, QScriptEngine* analysisEngine) {
    if (analysisEngine != nullptr) {
        SetUpAnalysisGlobals(*analysisEngine);
        stop.engine = analysisEngine;
        const bool result = SlotEvaluateScript(text, true);
        stop.engine = nullptr;
        return result;
    }
    if (OnScriptThread())
        return SlotEvaluateScript(text, false);
    return Marshal(MarshalledCall::EvaluateScript, [&] { return Q_EMIT SignalEvaluateScript(text, false); });
}

bool MCalverinScript_Device::ExecuteScriptFunction(const char* name, IData* result, const char** params) {
    if (OnScriptThread())
        return SlotExecuteScriptFunction(name, result, params);
    return Marshal(MarshalledCall::ExecuteScriptFunction,
                   [&] { return Q_EMIT SignalExecuteScriptFunction(name, result, params); });
}

bool MCalverinScript_Device::ExecuteCallBack(MyAsyncDeviceExecContext* context) {
    if (OnScriptThread())
        return SlotExecuteCallBack(context);
    return Marshal(MarshalledCall::ExecuteCallBack, [&] { return Q_EMIT SignalExecuteCallBack(context); });
}

bool MCalverinScript_Device::ExecuteStopFunction() {
    if (!hasStopFunction)
        return false;
    if (OnScriptThread())
        return SlotExecuteScript_mStop();
    return Marshal(MarshalledCall::ExecuteStopFunction, [&] { return Q_EMIT SignalExecuteScript_mStop(); });
}

void MCalverinScript_Device::ClearScriptState() {
    if (OnScriptThread()) {
        ClearTimers();
        return;
    }
    Marshal(MarshalledCall::ClearTimers, [&] {
        return inbox.Post([this] {
            RunSlot(MarshalledCall::ClearTimers, [this] {
                ClearTimers();
                return true;
            });
        });
    });
}

int MCalverinScript_Device::PostScriptEvent(const QString& name, const MScriptParamList* params,
                                            MScriptCommonEvent* event) {
    if (params != nullptr && event != nullptr)
        Q_EMIT SignalExecuteScriptEventCallBack(name, *params, event);
    return 1;
}

void MCalverinScript_Device::PostScriptEvents(const QString& name, std::vector<MScriptParamList> events,
                                              MScriptCommonEvent* event) {
    inbox.Post([this, name, events = std::move(events), event] {
        for (const MScriptParamList& params : events)
            SlotExecuteScriptEventCallBack(name, params, event);
    });
}
