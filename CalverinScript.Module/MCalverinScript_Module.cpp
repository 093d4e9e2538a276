#include "MCalverinScript_Module.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include <QImage>
#include <QLocale>

#include "DateFormat.h"
#include "Descriptors.h"
#include "FaceAnswer.h"
#include "HostText.h"
#include "IManagerRuntimeInfo.h"
#include "IObjectFactoryManager.h"
#include "Log.h"
#include "MCalverinScript_Device.h"
#include "ModuleApplication.h"
#include "ModuleResources.h"

namespace {

constexpr const char* kProgramName = "kxpCalverinScript";
constexpr const char* kRunTimeHostPrefix = "hostq";
constexpr std::uint32_t kModuleVersion = 999;
constexpr int kDescriptorsOfDevice = 4; ///< of the script thread's event loop, with some to spare
constexpr const char* kDeviceIdProperty = "ObjectParamDescriptor::DeviceID";

/// What ValidateCommand says, as codes of the contract: gone, other parameters, valid.
constexpr KXPCode kValidationCodes[] = {KXP_COMMANDS_CHANGED, KXP_NULL_ARGUMENT, KXP_OK};

/// An address inside the module file.
const void* ModuleHandle() {
    return reinterpret_cast<const void*>(&MCalverinScript_Module::GetEntryPoint);
}

MCalverinScript_Device* AsOurDevice(IKXPDevice* device) {
    return dynamic_cast<MCalverinScript_Device*>(device);
}

} // namespace

MCalverinScript_Module* MCalverinScript_Module::instance = nullptr;

KXPCode MCalverinScript_Module::GetEntryPoint(IKXPModule** out) {
    if (out == nullptr)
        return KXP_NULL_ARGUMENT;
    if (instance == nullptr) {
        ModuleApplication::Ensure();
        instance = new (std::nothrow) MCalverinScript_Module;
    }
    if (instance == nullptr)
        return KXP_NO_MODULE;
    *out = instance;
    return KXP_OK;
}

MCalverinScript_Module::~MCalverinScript_Module() {
    instance = nullptr;
}

KXPCode MCalverinScript_Module::QueryInterface(const char* name, void** out) {
    return AnswerFace(name, out,
                      {{"IKXPModule", static_cast<IKXPModule*>(this)},
                       {"IKXPModuleDriverManager", static_cast<IKXPModuleDriverManager*>(this)}});
}

KXPCode MCalverinScript_Module::Release() {
    delete this;
    MCalverinScript_Device::SweepAbandoned();
    ModuleApplication::End();
    return KXP_OK;
}

KXPCode MCalverinScript_Module::Initialize(IMInterface* hostRoot, void* /*ignored1*/, void* /*ignored2*/) {
    host = hostRoot;
    RegisterSelectors();
    OpenLog(ModuleHandle(), kProgramName, host);
    TakeDateFormat();
    LearnHost();
    return KXP_OK;
}

void MCalverinScript_Module::RegisterSelectors() {
    auto* factories = QueryFace<IObjectFactoryManager>(host, "IObjectFactoryManager");
    for (MSelectorWizard* selector :
         std::initializer_list<MSelectorWizard*>{&scriptSelector, &scriptTextSelector, &functionSelector}) {
        selector->SetHost(host);
        if (factories != nullptr)
            factories->RegisterFactory(selector->GetRegisteredName(), selector);
    }
}

/// Dates of scripts and settings are read as the machine's user writes them.
void MCalverinScript_Module::TakeDateFormat() {
    const QByteArray pattern = ToHostText(QLocale::system().dateFormat(QLocale::ShortFormat));
    SetDefaultDateFormat(DateFormatOfPattern(pattern.constData()));
}

void MCalverinScript_Module::LearnHost() {
    auto* info = QueryFace<IManagerRuntimeInfo>(host, "IManagerRuntimeInfo");
    KXPRuntimeInfo record = {};
    record.size = sizeof(record);
    if (info == nullptr || info->GetRuntimeInfo(&record) == 0)
        return;
    TakeVersion(std::string(record.version, strnlen(record.version, sizeof(record.version))));
    if (std::strncmp(record.appName, kRunTimeHostPrefix, std::strlen(kRunTimeHostPrefix)) == 0)
        debuggerAllowed = false;
}

void MCalverinScript_Module::TakeVersion(const std::string& version) {
    std::size_t start = 0;
    for (std::int32_t* number : {&hostMajor, &hostMinor, &hostBuild}) {
        if (start > version.size())
            return;
        const std::size_t end = std::min(version.find('.', start), version.size());
        if (*number == -1 && end > start)
            *number = std::atoi(version.substr(start, end - start).c_str());
        start = end + 1;
    }
}

KXPCode MCalverinScript_Module::Terminate(void* /*ignored*/) {
    if (auto* factories = QueryFace<IObjectFactoryManager>(host, "IObjectFactoryManager")) {
        // The text selector stays registered: hosts have come to count on finding it there.
        factories->UnregisterFactory(scriptSelector.GetRegisteredName());
        factories->UnregisterFactory(functionSelector.GetRegisteredName());
    }
    CloseLog();
    return KXP_OK;
}

KXPCode MCalverinScript_Module::SetDeviceHost(void* newDeviceHost) {
    deviceHost = newDeviceHost;
    return KXP_OK;
}

const char* MCalverinScript_Module::GetDefinition() {
    definition.LoadFromResource(ModuleHandle(), kDefinitionId);
    return definition.GetText();
}

KXPCode MCalverinScript_Module::GetModuleVersion(std::uint32_t* out) {
    if (out != nullptr)
        *out = kModuleVersion;
    return KXP_OK;
}

KXPCode MCalverinScript_Module::GetDeviceCount(std::uint32_t* out) {
    if (out != nullptr)
        *out = static_cast<std::uint32_t>(devices.Count());
    return KXP_OK;
}

KXPCode MCalverinScript_Module::CreateDevice(void* /*ignored*/, IKXPDevice** out) {
    if (out == nullptr || *out != nullptr)
        return KXP_NULL_ARGUMENT;
    if (deviceHost == nullptr)
        return KXP_NO_DEVICE_HOST;
    if (!CanOpenDescriptors(kDescriptorsOfDevice))
        return KXP_NO_DEVICE_MADE;
    auto* device = new (std::nothrow) MCalverinScript_Device(this, nullptr, nullptr);
    if (device == nullptr)
        return KXP_NO_DEVICE_MADE;
    if (!device->IsUsable()) {
        device->Release();
        return KXP_NO_DEVICE_MADE;
    }
    *out = device;
    devices.Add(device);
    device->SetModuleDeviceNumber(static_cast<std::uint32_t>(devices.Count()));
    return KXP_OK;
}

IKXPDevice* MCalverinScript_Module::GetDevice(std::uint32_t index) {
    return dynamic_cast<MCalverinScript_Device*>(MKXPDeviceBase::GetByIndex(index));
}

void MCalverinScript_Module::RemoveDevice(MCalverinScript_Device* device) {
    devices.Remove(device);
}

KXPCode MCalverinScript_Module::CheckCommand(void* /*ignored*/, IKXPDevice* device, std::int32_t id,
                                             IObjectParams* params) {
    MCalverinScript_Device* ours = AsOurDevice(device);
    if (ours == nullptr)
        return KXP_OK;
    if (params != nullptr)
        params->SetProperty(kDeviceIdProperty, std::to_string(ours->GetModuleDeviceNumber()).c_str(), 0, 0);
    return kValidationCodes[ours->ValidateCommand(id, params)];
}
