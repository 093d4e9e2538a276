#include "MCalverinScript_Device.h"

#include <memory>
#include <new>
#include <tuple>
#include <type_traits>
#include <utility>

#include <QScriptEngine>

#include "DeviceMarshalling.h"
#include "MScriptThread.h"
#include "OwnedArgument.h"
#include "ScriptGlobals.h"

void MCalverinScript_Device::OnScriptThreadStarted(MScriptThread* thread) {
    entrance.SetThread(thread);
}

void MCalverinScript_Device::OnScriptThreadEnding() {
    ClearTimers();
    entrance.LeaveThread();
    moveToThread(homeThread);
    runState.threadLeft = true;
}

void MCalverinScript_Device::ConnectSignals() {
    qRegisterMetaType<MScriptParamList>("MScriptParamList");
    connect(this, &MCalverinScript_Device::SignalShowDebugger, this, &MCalverinScript_Device::SlotShowDebugger);
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
        bool result = false;
        try {
            result = std::apply([this](auto&... owned) { return (device.*row.slot)(owned.Get()...); }, arguments);
        } catch (const std::bad_alloc&) {
            result = false;
        }
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
    if (!entrance.Post([call] { call->RunSlot(); }))
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
    return runState.hasStopFunction && Marshal(MarshalledCallTable::kExecuteStopFunction);
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
    entrance.Post([this, name, events = std::move(events), event] {
        for (const MScriptParamList& params : events)
            SlotExecuteScriptEventCallBack(name, params, event);
    });
}
