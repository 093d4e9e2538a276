#include "MScriptMngRemote.h"

#include "IScriptDevice.h"
#include "MyPostponedObject.h"

void MScriptMngRemote::SetPostponeAllowed(bool allowed) {
    if (MyPostponedObject* postponed = currentPostponed.exchange(nullptr))
        postponed->Release();
    postponeAllowed = allowed;
}

int MScriptMngRemote::PostponeResult() {
    if (!postponeAllowed || device == nullptr || currentPostponed != nullptr)
        return 0;
    auto* postponed = new MyPostponedObject(device->TakeExecutingCommand());
    postponed->AddRef();
    currentPostponed = postponed;
    postponedMap.Add(postponed);
    return static_cast<int>(postponed->GetId());
}

void MScriptMngRemote::SetResult(int id, const QString& text) {
    if (id == 0 || device == nullptr)
        return;
    auto* postponed = static_cast<MyPostponedObject*>(postponedMap.Remove(static_cast<std::uint32_t>(id)));
    if (postponed == nullptr)
        return;
    device->WriteCommandResult(postponed->GetCommand(), text);
    postponed->Release();
}

void MScriptMngRemote::ResetPostponed() {
    SetPostponeAllowed(false);
    postponedMap.DeleteAll();
}
