#include "MScriptMngRemote.h"

#include "HostText.h"
#include "IScriptDevice.h"
#include "MyPostponedObject.h"

void MScriptMngRemote::SetPostponeAllowed(bool allowed) {
    if (MyPostponedObject* postponed = m_currentPostponed.exchange(nullptr))
        postponed->Release();
    m_postponeAllowed = allowed;
}

int MScriptMngRemote::PostponeResult() {
    if (!m_postponeAllowed || m_device == nullptr || m_currentPostponed != nullptr)
        return 0;
    auto* postponed = new MyPostponedObject(m_device->TakeExecutingCommand());
    postponed->AddRef();
    m_currentPostponed = postponed;
    m_postponedMap.Add(postponed);
    return static_cast<int>(postponed->GetId());
}

void MScriptMngRemote::SetResult(int id, const QString& text) {
    if (id == 0 || m_device == nullptr)
        return;
    auto* postponed = static_cast<MyPostponedObject*>(m_postponedMap.Remove(static_cast<std::uint32_t>(id)));
    if (postponed == nullptr)
        return;
    TellLostCharacters(text);
    m_device->WriteCommandResult(postponed->GetCommand(), text);
    postponed->Release();
}

void MScriptMngRemote::TellLostCharacters(const QString& result) {
    if (!FitsHostText(result))
        TraceMessage(
            QStringLiteral(
                "The host gets \"?\" for each character of a result beyond Latin-1, and nothing from a NUL on."),
            QStringLiteral("ALARM"));
}

void MScriptMngRemote::ResetPostponed() {
    SetPostponeAllowed(false);
    m_postponedMap.DeleteAll();
}
