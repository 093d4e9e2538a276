#pragma once

#include <memory>

#include "HostText.h"
#include "IScriptDevice.h"
#include "MScriptMngRemote.h"

/// @file
/// The one way of a script to the host's links. For the bridge's own sources.

/// Runs one operation of the newer link with a synchronous context and waits when it is pending.
/// @param operation takes the context and gives the host's code.
/// @return the final code; on 0 the result text goes to text, which may be null.   [script]
template <typename Operation>
KXPCode MScriptMngRemote::CallAndWait(Operation operation, MString* text) {
    const auto release = [](MyDeviceExecContext* asked) { asked->Release(); };
    const std::unique_ptr<MyDeviceExecContext, decltype(release)> context(new MyDeviceExecContext(m_syncContexts),
                                                                          release);
    KXPCode code = operation(context.get());
    if (code == KXP_PENDING) {
        const ScriptWait wait(&m_scriptWaits, [&context] { context->GiveUp(); });
        if (wait.IsAllowed())
            context->Wait();
        code = context->GetErrorCode();
    }
    if (code == KXP_OK && text != nullptr)
        *text = context->GetResult();
    return code;
}

/// Calls an operation that both links have with the same arguments:
/// on the newer link when it is there, else on the older.
/// @return the host's code; 19 without a link.   [script]
template <typename Newer, typename Older, typename... Arguments>
KXPCode MScriptMngRemote::Forward(Newer newer, Older older, const Arguments&... arguments) {
    if (IsDeviceEnding())
        return KXP_NOT_IMPLEMENTED;
    if (m_remote2 != nullptr)
        return CallAndWait([&](IExecContext* context) { return (m_remote2->*newer)(arguments..., context, nullptr); });
    return m_remote != nullptr ? (m_remote->*older)(arguments...) : KXPCode{KXP_NOT_IMPLEMENTED};
}

/// The same for operations that give a text. @return the text; "" on failure and without a link.   [script]
template <typename Newer, typename Older, typename... Arguments>
QString MScriptMngRemote::ForwardForText(Newer newer, Older older, const Arguments&... arguments) {
    if (IsDeviceEnding())
        return QStringLiteral("");
    if (m_remote2 != nullptr) {
        MString text;
        CallAndWait([&](IExecContext* context) { return (m_remote2->*newer)(arguments..., context, nullptr); }, &text);
        return FromHostText(text.c_str());
    }
    char* text = nullptr;
    if (m_remote == nullptr || (m_remote->*older)(arguments..., &text) != KXP_OK || text == nullptr)
        return QStringLiteral("");
    QString result = FromHostText(text);
    m_remote->FreeText(&text);
    return result;
}
