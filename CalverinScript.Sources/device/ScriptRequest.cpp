#include "ScriptRequest.h"

#include <algorithm>

#include "MCommandObject.h"

namespace {

template <typename Object>
Object* PointerOf(const MCommandObject& command, CommandParam place) {
    return static_cast<Object*>(command.GetVoidParam(place, nullptr));
}

} // namespace

ScriptRequest ScriptRequest::Load(BuiltInCommand kind, const char* fileOrText) {
    ScriptRequest request;
    request.id = kind;
    request.text = fileOrText;
    return request;
}

ScriptRequest ScriptRequest::Function(const char* name) {
    return Load(kExecuteFunction, name);
}

ScriptRequest ScriptRequest::Function(const char* name, IData* result, const char* const* params) {
    ScriptRequest request = Load(kExecuteFunctionWithParams, name);
    request.result = result;
    std::copy_n(params, kArgumentCount, request.params.begin());
    return request;
}

ScriptRequest ScriptRequest::Callback(MyAsyncDeviceExecContext* answer) {
    ScriptRequest request;
    request.id = kScriptCallback;
    request.answer = answer;
    return request;
}

void ScriptRequest::AddTo(MCommandObject& command) const {
    if (id == kScriptCallback) {
        command.AddVoidParam(answer, kPointerParamSize);
        return;
    }
    command.AddCharBufferParam(text);
    if (id != kExecuteFunctionWithParams)
        return;
    command.AddVoidParam(result, kPointerParamSize);
    for (const char* param : params)
        command.AddCharBufferParam(param);
}

ScriptRequest ScriptRequest::Of(const MCommandObject& command) {
    ScriptRequest request;
    request.id = command.GetId();
    request.text = command.GetCharBufferParam(kTextParam);
    request.answer = PointerOf<MyAsyncDeviceExecContext>(command, kAsyncContextParam);
    request.result = PointerOf<IData>(command, kResultParam);
    for (int i = 0; i < kArgumentCount; ++i)
        request.params[static_cast<std::size_t>(i)] = command.GetCharBufferParam(kFirstArgumentParam + i);
    return request;
}
