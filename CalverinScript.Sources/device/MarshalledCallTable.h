#pragma once

#include <array>
#include <atomic>

#include "MCalverinScript_Device.h"

/// One kind of call to the script thread: how its completion is told, where its result is left and how long a caller waits.
struct MarshalledCallRow {
    MarshalledCall call;
    void (MCalverinScript_Device::*finished)(); ///< finishing signal, null for the device's own calls
    std::atomic<bool> MCalverinScript_Device::*result;
    std::uint32_t limitMs;
};

/// The table of marshalled calls, in the order of MarshalledCall.
struct MarshalledCallTable {
    using Device = MCalverinScript_Device;

    static constexpr std::uint32_t kStopLimitMs = 25; ///< what Stop grants the script

    static constexpr std::array<MarshalledCallRow, kMarshalledCallCount> kRows = {{
        {MarshalledCall::LoadScriptCommand, &Device::SignalLoadScriptCommandFinished, &Device::loadResult,
         CompletionGate::kNoLimit},
        {MarshalledCall::EvaluateScriptCommand, &Device::SignalEvaluateScriptCommandFinished,
         &Device::evaluateCommandResult, CompletionGate::kNoLimit},
        {MarshalledCall::EvaluateScript, &Device::SignalEvaluateScriptFinished, &Device::evaluateResult,
         CompletionGate::kNoLimit},
        {MarshalledCall::ExecuteScriptFunction, &Device::SignalExecuteScriptFunctionFinished, &Device::executeResult,
         CompletionGate::kNoLimit},
        {MarshalledCall::ExecuteCallBack, &Device::SignalExecuteCallBackFinished, &Device::callBackResult,
         CompletionGate::kNoLimit},
        {MarshalledCall::ExecuteStopFunction, &Device::SignalExecuteScript_mStopFinished, &Device::stopResult,
         kStopLimitMs},
        {MarshalledCall::ClearTimers, nullptr, &Device::clearResult, kStopLimitMs},
    }};

    static constexpr const MarshalledCallRow& RowOf(MarshalledCall call) {
        return kRows[static_cast<std::size_t>(call)];
    }
    static constexpr bool InOrder() {
        for (std::size_t i = 0; i < kRows.size(); ++i)
            if (kRows[i].call != static_cast<MarshalledCall>(i))
                return false;
        return true;
    }
};
