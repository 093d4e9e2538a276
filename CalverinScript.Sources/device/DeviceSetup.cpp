#include "MCalverinScript_Device.h"

#include <cstdlib>

#include <QImage>

#include "IModuleServices.h"
#include "ISetupInterface.h"
#include "ModuleResources.h"
#include "MScriptMngRemote.h"

namespace {

constexpr std::uint32_t kFirstCapability = 1;
constexpr std::uint32_t kLastCapability = 2;
constexpr std::uint32_t kControlPanelKind = 1;

} // namespace

void MCalverinScript_Device::SetDeviceVariables(IDeviceVariables* variables) {
    deviceVariables = variables;
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

const char* MCalverinScript_Device::GetScriptDeviceName() {
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
            bitmap = new QImage(image);
    }
    return bitmap;
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

const char* MCalverinScript_Device::GetDefinition() {
    if (module == nullptr)
        return nullptr;
    if (definitionCache.IsNotEmpty())
        return definitionCache.c_str();
    std::string text;
    if (MakeDefinition(live.functions.Snapshot(), variablesLive.Snapshot(), appliedRemoveDefaults, false, text))
        definitionCache = text.c_str();
    else if (const char* definitionTemplate = module->GetDefinitionTemplate())
        definitionCache = definitionTemplate;
    else
        return nullptr;
    return definitionCache.c_str();
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

void MCalverinScript_Device::SetSetupScript(const QString& fileName, const QString& text) {
    setupScriptFileName = fileName;
    setupScriptText = text;
}

void MCalverinScript_Device::SetSetupSettings(const QList<MScriptSetting>& settings) {
    ReplaceAll(setupSettings, settings);
}

void MCalverinScript_Device::BindDefaultVariables() {
    defaults.Bind([this](const char* variable) { return FindDefaultVariable(variable); });
}

IData* MCalverinScript_Device::FindDefaultVariable(const char* name) {
    const bool isKept = deviceVariables != nullptr && !appliedRemoveDefaults;
    return isKept ? deviceVariables->GetVariable(name) : nullptr;
}
