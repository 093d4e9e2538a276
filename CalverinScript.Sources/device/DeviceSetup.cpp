#include "MCalverinScript_Device.h"

#include <cstdlib>

#include <QStandardItemModel>

#include "CompletionTable.h"
#include "ModuleShared.h"
#include "RunWithinMemory.h"
#include "SetupDesk.h"
#include "ThreadPromise.h"
#include "WithinMemory.h"

KXPCode MCalverinScript_Device::GetSetup(char** out) {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::GetSetup");
    if (out == nullptr)
        return KXP_NULL_ARGUMENT;
    return WithinMemory(KXP_NOT_IMPLEMENTED, [this, out] { return desk->Print(out); });
}

KXPCode MCalverinScript_Device::SetSetup(const char* text) {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::SetSetup");
    return WithinMemory(KXP_NOT_IMPLEMENTED, [this, text] { return desk->Take(text); });
}

KXPCode MCalverinScript_Device::UpdateCommand(const char* commandXml, char** out) {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::UpdateCommand");
    if (door.IsClosed() || out == nullptr)
        return KXP_NOT_IMPLEMENTED;
    return WithinMemory(KXP_NOT_IMPLEMENTED, [&] {
        char* const updated = commands.Update(commandXml, CopyName());
        if (updated == nullptr)
            return KXPCode{KXP_NOT_IMPLEMENTED};
        *out = updated;
        return KXPCode{KXP_OK};
    });
}

KXPCode MCalverinScript_Device::ReleaseString(char** text) {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::ReleaseString");
    if (text == nullptr || *text == nullptr)
        return KXP_NULL_ARGUMENT;
    std::free(*text);
    *text = nullptr;
    return KXP_OK;
}

const char* MCalverinScript_Device::GetDefinition() {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::GetDefinition");
    const HostDoor::Visit visit(door);
    const char* definition = nullptr;
    if (!RunWithinMemory([&] { definition = desk->GetDefinition(); }))
        TellWantOfMemory("the definition");
    return definition;
}

void MCalverinScript_Device::RebuildCompletionTable(bool fill) {
    const auto lists = fill && !door.IsClosed() ? ReadObjectLists(services.linkManager) : std::vector<ObjectListText>();
    // The device may be gone by now, and with the last one all that is shared.
    ModuleShared* const shared = ModuleShared::Get();
    if (shared == nullptr)
        return;
    if (fill)
        FillCompletionTable(*shared->completionModel, lists);
    else
        shared->completionModel->clear();
}
