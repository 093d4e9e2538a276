#include "MScriptMngRemote.h"

#include <memory>

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
    const auto release = [](MyPostponedObject* held) { held->Release(); };
    std::unique_ptr<MyPostponedObject, decltype(release)> postponed(
        new MyPostponedObject(m_device->TakeExecutingCommand()), release);
    m_postponedMap.Add(postponed.get()); // takes over the reference; without memory for it the command ends here
    postponed->AddRef();
    m_currentPostponed = postponed.get();
    return static_cast<int>(postponed.release()->GetId());
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
