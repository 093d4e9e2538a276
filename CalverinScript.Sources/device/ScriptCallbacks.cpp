#include "ScriptCallbacks.h"

#include "HostText.h"
#include "MyAsyncDeviceExecContext.h"

std::optional<ScriptCallbacks::Call> ScriptCallbacks::Take(MyAsyncDeviceExecContext& context) {
    if (!context.IsOver() || !m_functions.contains(&context))
        return std::nullopt;
    const MString result = context.GetResult();
    Call call{m_functions.take(&context), {}};
    if (result.GetLength() > 0)
        call.arguments.append(QScriptValue(FromHostText(result.c_str())));
    return call;
}

void ScriptCallbacks::Clear() {
    m_functions.clear();
    m_onChange = QScriptValue();
}
