#include "MCalverinScript_Device.h"

#include <QImage>

#include "FaceAnswer.h"
#include "HostText.h"
#include "IKXPDevicePanel.h"
#include "IManagerRuntimeInfo.h"
#include "IModuleServices.h"
#include "ISetupInterface.h"
#include "ModuleResources.h"
#include "RunWithinMemory.h"
#include "ScriptDebugger.h"
#include "ScriptWorld.h"
#include "ThreadPromise.h"
#include "WithinMemory.h"

namespace {

constexpr std::uint32_t kFirstCapability = 1;
constexpr std::uint32_t kLastCapability = 2;
constexpr std::uint32_t kControlPanelKind = 1;
constexpr std::uint32_t kDefaultUserMode = 2;

} // namespace

KXPCode MCalverinScript_Device::QueryInterface(const char* name, void** out) {
    if (door.IsClosed())
        return AnswerFace(name, out, {});
    auto* self = static_cast<IKXPDevice*>(this);
    return AnswerFace(name, out, {{"IMInterface", self}, {"IKXPDevice", self}});
}

void MCalverinScript_Device::SetDeviceVariables(IDeviceVariables* variables) {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::SetDeviceVariables");
    if (!door.IsClosed() && !RunWithinMemory([&] { values.SetVariables(variables); }))
        TellWantOfMemory("the variables");
}

KXPCode MCalverinScript_Device::QueryCapability(std::uint32_t capability) {
    ExpectThread(ThreadWord::AnyHostThread, "IKXPDevice::QueryCapability");
    return !door.IsClosed() && capability >= kFirstCapability && capability <= kLastCapability ? KXP_OK : KXP_NO;
}

void MCalverinScript_Device::SetName(const char* newName) {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::SetName");
    if (!door.IsClosed() && !RunWithinMemory([&] { MKXPDeviceBase::SetName(newName); }))
        TellWantOfMemory("the name");
}

const char* MCalverinScript_Device::GetName() {
    ExpectThread(ThreadWord::AnyHostThread, "IKXPDevice::GetName");
    return MKXPDeviceBase::GetName();
}

KXPCode MCalverinScript_Device::ShowSetup(void* /*ignored*/) {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::ShowSetup");
    return ShowSetupDialog(nullptr);
}

KXPCode MCalverinScript_Device::ShowSetupDialog(const char* scriptName) {
    if (setupInterface == nullptr || door.IsClosed())
        return KXP_CANCELLED;
    return WithinMemory(KXP_CANCELLED, [&] { return setupInterface->ShowSetup(*this, scriptName); });
}

void MCalverinScript_Device::SlotShowDebugger() {
    if (ScriptDebugger* debugger = world->Debugger())
        debugger->Show(FromHostText(GetName()));
}

KXPCode MCalverinScript_Device::IsRunning() {
    ExpectThread(ThreadWord::AnyHostThread, "IKXPDevice::IsRunning");
    return IsStarted() ? KXP_OK : KXP_NO;
}

KXPCode MCalverinScript_Device::OnTimerailEvent(ITimeData* time, std::int32_t action) {
    ExpectThread(ThreadWord::AnyHostThread, "IKXPDevice::OnTimerailEvent");
    const HostDoor::Visit visit(door); // the host may release the device when it is asked for the position
    if (door.IsClosed())
        return KXP_NOT_IMPLEMENTED;
    return WithinMemory(KXP_NOT_IMPLEMENTED, [&] {
        ChangeTrackState(action, time != nullptr ? time->GetFrameCount() : 0);
        return KXPCode{KXP_OK};
    });
}

KXPBitmap MCalverinScript_Device::GetBitmap() {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::GetBitmap");
    if (door.IsClosed())
        return nullptr;
    if (!bitmap)
        RunWithinMemory([this] { LoadBitmap(); });
    return bitmap.get();
}

void MCalverinScript_Device::LoadBitmap() {
    const QImage image = QImage::fromData(FindModuleResource(ModuleResource::Bitmap, kDeviceBitmapId));
    if (!image.isNull())
        bitmap = std::make_unique<QImage>(image);
}

KXPCode MCalverinScript_Device::Reserved14(void* /*argument*/) {
    return KXP_OK;
}

KXPCode MCalverinScript_Device::Reserved15(void* /*argument*/) {
    return KXP_OK;
}

KXPCode MCalverinScript_Device::Reserved16(void* /*argument*/) {
    return KXP_OK;
}

KXPCode MCalverinScript_Device::Reserved20() {
    return KXP_OK;
}

/// The host may release the device from what the new panel asks it.
KXPCode MCalverinScript_Device::CreatePanel(std::uint32_t kind, IKXPDevicePanel** out) {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::CreatePanel");
    const HostDoor::Visit visit(door);
    if (out == nullptr)
        return KXP_NULL_ARGUMENT;
    *out = nullptr;
    if (kind != kControlPanelKind || setupInterface == nullptr || door.IsClosed())
        return KXP_NOT_IMPLEMENTED;
    IKXPDevicePanel* panel = nullptr;
    RunWithinMemory([&] { panel = setupInterface->CreateControlPanel(*this); });
    if (panel == nullptr)
        return KXP_NOT_IMPLEMENTED;
    if (door.IsClosed()) {
        panel->Release();
        return KXP_NOT_IMPLEMENTED;
    }
    *out = panel;
    return KXP_OK;
}

void MCalverinScript_Device::TellPanels(bool running) {
    if (setupInterface == nullptr || !setupInterface->HasPanel(*this))
        return;
    std::uint32_t mode = 0;
    if (running) {
        auto* info =
            QueryFace<IManagerRuntimeInfo>(module != nullptr ? module->GetHost() : nullptr, "IManagerRuntimeInfo");
        mode = info != nullptr ? info->GetUserMode() : kDefaultUserMode;
    }
    setupInterface->PostRunState(*this, running, mode);
}
