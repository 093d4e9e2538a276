#include "MCalverinScript_Device.h"

#include <chrono>
#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>

#include <QCoreApplication>
#include <QEvent>
#include <QScriptContext>
#include <QScriptEngine>
#include <QTimerEvent>

#include "DeviceMarshalling.h"
#include "MScriptThread.h"
#include "OwnedArgument.h"
#include "ScriptEntry.h"
#include "ScriptGlobals.h"

namespace {

/// Posted to the device when its inbox has work.
const QEvent::Type kDrainEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

constexpr int kAbortRetryMs = 5;

/// How long tasks are run before the thread looks at its timers.
constexpr std::chrono::milliseconds kTurn(5);

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

void MCalverinScript_Device::ConnectSignals() {
    qRegisterMetaType<MScriptParamList>("MScriptParamList");
    connect(this, &MCalverinScript_Device::SignalShowDebugger, this, &MCalverinScript_Device::SlotShowDebugger);
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

/// A marshalled call on its way: what its slot needs, and the completion that its caller waits for.
template <typename... Parameters>
struct MCalverinScript_Device::OpenCall {
    using Row = MarshalledCallRow<Parameters...>;

    OpenCall(MCalverinScript_Device& owner, const Row& kind, const Parameters&... parameters)
        : device(owner)
        , row(kind)
        , arguments(parameters...) {}

    void Announce() {
        if (row.request != nullptr)
            std::apply([this](auto&... owned) { Q_EMIT(device.*row.request)(owned.Get()...); }, arguments);
    }
    void RunSlot() {
        const bool result =
            std::apply([this](auto&... owned) { return (device.*row.slot)(owned.Get()...); }, arguments);
        device.gate.Complete(completion, result);
    }
    void GiveBack(const Parameters&... callers) {
        std::apply([&](auto&... owned) { (owned.GiveBack(callers), ...); }, arguments);
    }

    MCalverinScript_Device& device;
    const Row& row;
    CompletionGate::Call completion;
    std::tuple<OwnedArgument<std::decay_t<Parameters>>...> arguments;
};

/// Runs the slot of a call on the script thread and waits for it; on that thread itself runs it at once. The request lives until
/// the slot has run, also when the wait for it has ended earlier.
template <typename... Parameters>
bool MCalverinScript_Device::Marshal(const MarshalledCallRow<Parameters...>& row,
                                     const std::common_type_t<Parameters>&... parameters) {
    if (OnScriptThread())
        return (this->*row.slot)(parameters...);
    const auto call = std::make_shared<OpenCall<Parameters...>>(*this, row, parameters...);
    call->Announce();
    if (!inbox.Post([call] { call->RunSlot(); }))
        return false;
    bool result = false;
    if (gate.Wait(call->completion, row.limitMs, result))
        call->GiveBack(parameters...);
    return result;
}

bool MCalverinScript_Device::LoadScriptCommand(const char* fileName, bool stopMode) {
    if (stopMode)
        return SlotLoadScriptCommand(fileName, stopMode);
    return Marshal(MarshalledCallTable::kLoadScriptCommand, fileName, stopMode);
}

bool MCalverinScript_Device::EvaluateScriptCommand(const QString& text, bool stopMode) {
    if (stopMode)
        return SlotEvaluateScriptCommand(text, stopMode);
    return Marshal(MarshalledCallTable::kEvaluateScriptCommand, text, stopMode);
}

bool MCalverinScript_Device::EvaluateScript(const QString& text, QScriptEngine* analysisEngine) {
    if (analysisEngine == nullptr)
        return Marshal(MarshalledCallTable::kEvaluateScript, text, false);
    SetUpAnalysisGlobals(*analysisEngine);
    stop.engine = analysisEngine;
    const bool result = SlotEvaluateScript(text, true);
    stop.engine = nullptr;
    return result;
}

bool MCalverinScript_Device::ExecuteScriptFunction(const char* name, IData* result, const char** params) {
    return Marshal(MarshalledCallTable::kExecuteScriptFunction, name, result, params);
}

bool MCalverinScript_Device::ExecuteCallBack(MyAsyncDeviceExecContext* context) {
    return Marshal(MarshalledCallTable::kExecuteCallBack, context);
}

bool MCalverinScript_Device::ExecuteStopFunction() {
    return hasStopFunction && Marshal(MarshalledCallTable::kExecuteStopFunction);
}

void MCalverinScript_Device::ClearScriptState() {
    Marshal(MarshalledCallTable::kClearScriptState);
}

bool MCalverinScript_Device::ClearStateOnScriptThread() {
    return RunSlot(MarshalledCallTable::kClearScriptState, [this] {
        ClearTimers();
        return true;
    });
}

int MCalverinScript_Device::PostScriptEvent(const QString& name, const MScriptParamList* params,
                                            MScriptCommonEvent* event) {
    if (params != nullptr && event != nullptr)
        PostScriptEvents(name, {*params}, event);
    return 1;
}

void MCalverinScript_Device::PostScriptEvents(const QString& name, std::vector<MScriptParamList> events,
                                              MScriptCommonEvent* event) {
    for (const MScriptParamList& params : events)
        Q_EMIT SignalExecuteScriptEventCallBack(name, params, event);
    inbox.Post([this, name, events = std::move(events), event] {
        for (const MScriptParamList& params : events)
            SlotExecuteScriptEventCallBack(name, params, event);
    });
}
