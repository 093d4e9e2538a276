#pragma once

#include <cstdint>

#include "MCalverinScript_Device.h"

/// One kind of call to the script thread: the signal that announces it, the slot that does its work there, the signal
/// that follows the work, and how long a caller waits. Its arguments are those of the slot.
template <typename... Parameters>
struct MarshalledCallRow {
    using Device = MCalverinScript_Device;

    bool (Device::*request)(Parameters...); ///< null for the device's own calls
    bool (Device::*slot)(Parameters...);
    void (Device::*finished)(); ///< null for the device's own calls
    std::uint32_t limitMs = CompletionGate::kNoLimit;
};

template <typename... Parameters, typename... Rest>
MarshalledCallRow(bool (MCalverinScript_Device::*)(Parameters...), bool (MCalverinScript_Device::*)(Parameters...),
                  Rest...) -> MarshalledCallRow<Parameters...>;

/// The table of marshalled calls. A new call is one row here and its slot.
struct MarshalledCallTable {
    using Device = MCalverinScript_Device;

    static constexpr std::uint32_t kStopLimitMs = 25; ///< what Stop grants the script

    static constexpr MarshalledCallRow kLoadScriptCommand{
        &Device::SignalLoadScriptCommand, &Device::SlotLoadScriptCommand, &Device::SignalLoadScriptCommandFinished};
    static constexpr MarshalledCallRow kEvaluateScriptCommand{&Device::SignalEvaluateScriptCommand,
                                                              &Device::SlotEvaluateScriptCommand,
                                                              &Device::SignalEvaluateScriptCommandFinished};
    static constexpr MarshalledCallRow kEvaluateScript{&Device::SignalEvaluateScript, &Device::SlotEvaluateScript,
                                                       &Device::SignalEvaluateScriptFinished};
    static constexpr MarshalledCallRow kExecuteScriptFunction{&Device::SignalExecuteScriptFunction,
                                                              &Device::SlotExecuteScriptFunction,
                                                              &Device::SignalExecuteScriptFunctionFinished};
    static constexpr MarshalledCallRow kExecuteCallBack{&Device::SignalExecuteCallBack, &Device::SlotExecuteCallBack,
                                                        &Device::SignalExecuteCallBackFinished};
    static constexpr MarshalledCallRow kExecuteStopFunction{&Device::SignalExecuteScript_mStop,
                                                            &Device::SlotExecuteScript_mStop,
                                                            &Device::SignalExecuteScript_mStopFinished, kStopLimitMs};
    static constexpr MarshalledCallRow<> kClearScriptState{nullptr, &Device::ClearStateOnScriptThread, nullptr,
                                                           kStopLimitMs};
};
