#include "MCalverinScript_Device.h"

#include <cstdlib>

#include <QImage>

#include "FaceAnswer.h"
#include "ISetupInterface.h"
#include "ModuleResources.h"
#include "MScriptMngRemote.h"

namespace {

constexpr std::uint32_t kFirstCapability = 1;
constexpr std::uint32_t kLastCapability = 2;
constexpr std::uint32_t kControlPanelKind = 1;

} // namespace

KXPCode MCalverinScript_Device::QueryInterface(const char* name, void** out) {
    auto* self = static_cast<IKXPDevice*>(this);
    return AnswerFace(name, out, {{"IMInterface", self}, {"IKXPDevice", self}});
}

void MCalverinScript_Device::SetDeviceVariables(IDeviceVariables* variables) {
    values.SetVariables(variables);
}

KXPCode MCalverinScript_Device::QueryCapability(std::uint32_t capability) {
    return capability >= kFirstCapability && capability <= kLastCapability ? KXP_OK : KXP_NO;
}

void MCalverinScript_Device::SetName(const char* newName) {
    MKXPDeviceBase::SetName(newName);
}

const char* MCalverinScript_Device::GetName() {
    return MKXPDeviceBase::GetName();
}

KXPCode MCalverinScript_Device::ShowSetup(void* /*ignored*/) {
    return ShowSetupDialog(nullptr);
}

KXPCode MCalverinScript_Device::ShowSetupDialog(const char* scriptName) {
    return setupInterface != nullptr ? setupInterface->ShowSetup(*this, scriptName) : KXPCode{KXP_CANCELLED};
}

KXPCode MCalverinScript_Device::IsRunning() {
    return IsStarted() ? KXP_OK : KXP_NO;
}

KXPCode MCalverinScript_Device::OnTimerailEvent(ITimeData* time, std::int32_t action) {
    ChangeTrackState(action, time != nullptr ? time->GetFrameCount() : 0);
    return KXP_OK;
}

KXPBitmap MCalverinScript_Device::GetBitmap() {
    if (bitmap == nullptr) {
        const QImage image = QImage::fromData(FindModuleResource(ModuleResource::Bitmap, kDeviceBitmapId));
        if (!image.isNull())
            bitmap = std::make_unique<QImage>(image);
    }
    return bitmap.get();
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

KXPCode MCalverinScript_Device::ReleaseString(char** text) {
    if (text == nullptr || *text == nullptr)
        return KXP_NULL_ARGUMENT;
    std::free(*text);
    *text = nullptr;
    return KXP_OK;
}

KXPCode MCalverinScript_Device::CreatePanel(std::uint32_t kind, IKXPDevicePanel** out) {
    if (out == nullptr)
        return KXP_NULL_ARGUMENT;
    if (kind != kControlPanelKind || setupInterface == nullptr)
        return KXP_NOT_IMPLEMENTED;
    panel = setupInterface->CreateControlPanel(*this);
    *out = panel;
    return panel != nullptr ? KXP_OK : KXP_NOT_IMPLEMENTED;
}
