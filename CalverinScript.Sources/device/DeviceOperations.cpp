#include "MCalverinScript_Device.h"

#include <array>

#include "CommandNumbers.h"
#include "HostText.h"
#include "Log.h"
#include "MScriptMngRemote.h"

/// One operation of the command road: its command number, its name in the log and what it shows in "Status".
struct MCalverinScript_Device::Operation {
    std::int32_t id;
    const char* name;
    DeviceStatus status;
    bool isCallback; ///< a script's own: clears no error, shows no status
};

namespace {

constexpr int kOperationLevel = 7;

const char* Printable(const char* text) {
    return text != nullptr ? text : "";
}

/// The texts of an operation as the log shows them, ": " in front; empty for none.
QByteArray LogDetail(const char* text) {
    return QByteArray(": ") + Printable(text);
}

QByteArray LogDetail(const char* text, const char** params) {
    QByteArray detail = LogDetail(text);
    for (int i = 0; i < kArgumentCount; ++i)
        detail += QByteArray(i == 0 ? ", " : ",") + Printable(params[i]);
    return detail;
}

} // namespace

/// Posts the operation, or does its work with all that stands around it.
/// @param detail gives the log's texts, asked for only while the log is on. @param addParams adds what follows the context.
template <typename Detail, typename AddParams, typename Work>
bool MCalverinScript_Device::RunOperation(const Operation& operation, IExecContext* context, bool execute,
                                          Detail detail, AddParams addParams, Work work) {
    if (!execute && !MayPost())
        return false;
    if (IsLogOn(false)) {
        const QByteArray texts = detail();
        WriteLog(LogHandle(), kOperationLevel, "kxpCalverinScript [%s] %s [%s]:%s - Stack: %d", GetName(),
                 operation.name, execute ? "execute" : "post", texts.mid(1).constData(), stackCount.Read());
    }
    if (!execute) {
        const bool endsContext = operation.id == kExecuteFunctionWithParams;
        auto* command =
            new MCommandObject(this, operation.id, 0, endsContext ? this : nullptr, endsContext ? context : nullptr);
        command->AddVoidParam(context, kPointerParamSize);
        addParams(*command);
        PostOperation(command);
        return true;
    }
    if (!operation.isCallback) {
        ReportError(QStringLiteral(""), false);
        SetStatus(operation.status);
    }
    const bool result = work();
    if (IsLogOn(false))
        WriteLog(LogHandle(), kOperationLevel, "kxpCalverinScript [%s] %s [executed]%s", GetName(), operation.name,
                 detail().constData());
    if (!operation.isCallback)
        SetStatus(DeviceStatus::Ready);
    return result;
}

void MCalverinScript_Device::PostOperation(MCommandObject* command) {
    command->SetTimeout(kCommandTimeoutMs);
    stackCount.Increment();
    if (PostCommand(command) == kCommandQueuedDropping)
        stackCount.Decrement();
}

bool MCalverinScript_Device::LoadScriptFromFile(IExecContext* context, const char* fileName, bool execute) {
    static constexpr Operation kOperation{kLoadFromFile, "LoadScriptFromFile", DeviceStatus::Loading, false};
    return RunOperation(
        kOperation, context, execute, [&] { return LogDetail(fileName); },
        [&](MCommandObject& command) { command.AddCharBufferParam(fileName); },
        [&] { return LoadScriptCommand(fileName, false); });
}

bool MCalverinScript_Device::LoadScriptFromText(IExecContext* context, const char* text, bool execute) {
    static constexpr Operation kOperation{kLoadFromText, "LoadScriptFromText", DeviceStatus::Loading, false};
    return RunOperation(
        kOperation, context, execute, [&] { return LogDetail(text); },
        [&](MCommandObject& command) { command.AddCharBufferParam(text); },
        [&] { return EvaluateScriptCommand(FromHostText(text), false); });
}

bool MCalverinScript_Device::ExecuteScriptFunction(IExecContext* context, const char* name, bool execute) {
    static constexpr Operation kOperation{kExecuteFunction, "ExecuteScriptFunction", DeviceStatus::Executing, false};
    return RunOperation(
        kOperation, context, execute, [&] { return LogDetail(name); },
        [&](MCommandObject& command) { command.AddCharBufferParam(name); },
        [&] { return ExecuteScriptFunction(name, nullptr, nullptr); });
}

bool MCalverinScript_Device::ExecuteScriptFunctionWithParams(IExecContext* context, const char* name, IData* result,
                                                             const char** params, bool execute) {
    static constexpr Operation kOperation{kExecuteFunctionWithParams, "ExecuteScriptFunctionWithParams",
                                          DeviceStatus::Executing, false};
    const auto addParams = [&](MCommandObject& command) {
        command.AddCharBufferParam(name);
        command.AddVoidParam(result, kPointerParamSize);
        for (int i = 0; i < kArgumentCount; ++i)
            command.AddCharBufferParam(params[i]);
    };
    return RunOperation(
        kOperation, context, execute, [&] { return LogDetail(name, params); }, addParams,
        [&] { return ExecuteScriptFunction(name, result, params); });
}

bool MCalverinScript_Device::ExecuteCallBack(IExecContext* context, MyAsyncDeviceExecContext* asyncContext,
                                             bool execute) {
    static constexpr Operation kOperation{kScriptCallback, "ExecuteCallBack", DeviceStatus::Executing, true};
    return RunOperation(
        kOperation, context, execute, [] { return QByteArray(); },
        [&](MCommandObject& command) { command.AddVoidParam(asyncContext, kPointerParamSize); },
        [&] { return ExecuteCallBack(asyncContext); });
}

void MCalverinScript_Device::PostAsyncResult(MyAsyncDeviceExecContext* context) {
    if (context != nullptr)
        ExecuteCallBack(nullptr, context, false);
}

/// Reads the parameters back in the order in which they were added.
bool MCalverinScript_Device::DispatchCommand(MCommandObject* command) {
    auto* context = static_cast<IExecContext*>(command->GetVoidParam(kContextParam, nullptr));
    const char* text = command->GetCharBufferParam(kTextParam);
    switch (command->GetId()) {
    case kLoadFromFile:
        return LoadScriptFromFile(context, text, true);
    case kLoadFromText:
        return LoadScriptFromText(context, text, true);
    case kExecuteFunction:
        return ExecuteScriptFunction(context, text, true);
    case kExecuteFunctionWithParams: {
        std::array<const char*, kArgumentCount> params{};
        for (int i = 0; i < kArgumentCount; ++i)
            params[static_cast<std::size_t>(i)] = command->GetCharBufferParam(kFirstArgumentParam + i);
        auto* result = static_cast<IData*>(command->GetVoidParam(kResultParam, nullptr));
        currentCommand = command;
        const bool done = ExecuteScriptFunctionWithParams(context, text, result, params.data(), true);
        currentCommand = nullptr;
        return done;
    }
    case kScriptCallback:
        return ExecuteCallBack(
            context, static_cast<MyAsyncDeviceExecContext*>(command->GetVoidParam(kAsyncContextParam, nullptr)), true);
    default:
        return false;
    }
}

bool MCalverinScript_Device::ExecuteCommand(MCommandObject* command) {
    const bool done = DispatchCommand(command);
    const bool postponed = command->GetId() == kExecuteFunctionWithParams && remote->HasPostponed();
    if (!done && !postponed) {
        HoldCurrentCommand();
        return false;
    }
    FinishCurrentCommand(postponed ? command : nullptr);
    stackCount.Decrement();
    remote->SetPostponeAllowed(false);
    return true;
}

std::uint32_t MCalverinScript_Device::ThreadRun(MThread* thread) {
    while (!thread->StopRequested()) {
        WaitForCommand(kInfinite);
        while (TakeNextCommand() == kCommandDone) {
            if (thread->StopRequested())
                return 0;
            ExecuteCurrentCommand();
        }
    }
    return 0;
}
