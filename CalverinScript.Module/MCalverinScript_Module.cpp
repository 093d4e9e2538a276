#include "MCalverinScript_Module.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include <QImage>
#include <QLocale>

#include "AddressSpace.h"
#include "DateFormat.h"
#include "Descriptors.h"
#include "FaceAnswer.h"
#include "HostText.h"
#include "IManagerRuntimeInfo.h"
#include "IObjectFactoryManager.h"
#include "Log.h"
#include "MCalverinScript_Device.h"
#include "ModuleResources.h"
#include "QMfcApp.h"
#include "RunWithinMemory.h"
#include "SetupInterface.h"
#include "ThreadPromise.h"
#include "WithinMemory.h"

namespace {

constexpr const char* kProgramName = "kxpCalverinScript";
constexpr const char* kRunTimeHostPrefix = "hostq";
constexpr std::uint32_t kModuleVersion = 999;
constexpr std::size_t kMegabyte = std::size_t{1} << 20U;
/// Address space of a device with its threads. Without it the script engine would end the process.
constexpr std::size_t kSpaceOfDevice = 48 * kMegabyte;
/// What the first engine of a process reserves for the code of all of them.
constexpr std::size_t kSpaceOfFirstEngine = 2048 * kMegabyte;
constexpr int kDescriptorsOfDevice = 4; ///< of the script thread's event loop, with some to spare
constexpr const char* kDeviceIdProperty = "ObjectParamDescriptor::DeviceID";

/// What ValidateCommand says, as codes of the contract: gone, other parameters, valid.
constexpr KXPCode kValidationCodes[] = {KXP_COMMANDS_CHANGED, KXP_NULL_ARGUMENT, KXP_OK};

/// An address inside the module file.
const void* ModuleHandle() {
    return reinterpret_cast<const void*>(&MCalverinScript_Module::GetEntryPoint);
}

/// Whether there is room for one more device. An engine that has been made keeps what it has reserved.
bool HasSpaceForDevice() {
    static bool hasMadeOne = false; // host main
    if (!CanReserveAddressSpace(kSpaceOfDevice + (hasMadeOne ? 0 : kSpaceOfFirstEngine)))
        return false;
    return hasMadeOne = true;
}

MCalverinScript_Device* AsOurDevice(IKXPDevice* device) {
    return dynamic_cast<MCalverinScript_Device*>(device);
}

} // namespace

MCalverinScript_Module* MCalverinScript_Module::instance = nullptr;
MCalverinScript_Module* MCalverinScript_Module::released = nullptr;

KXPCode MCalverinScript_Module::GetEntryPoint(IKXPModule** out) {
    if (out == nullptr)
        return KXP_NULL_ARGUMENT;
    NoteHostMainThread();
    return WithinMemory(KXP_NO_MODULE, [out] {
        if (instance == nullptr) {
            QMfcApp::pluginInstance();
            instance = new MCalverinScript_Module;
        }
        *out = instance;
        return KXPCode{KXP_OK};
    });
}

MCalverinScript_Module::~MCalverinScript_Module() = default;

KXPCode MCalverinScript_Module::QueryInterface(const char* name, void** out) {
    return AnswerFace(name, out,
                      {{"IKXPModule", static_cast<IKXPModule*>(this)},
                       {"IKXPModuleDriverManager", static_cast<IKXPModuleDriverManager*>(this)}});
}

/// The host may release from within a call that this object made, may release twice, and may keep devices. So the
/// object stays until the next one is released, without what it had. A device that is just being made needs the module
/// to the end: the release waits for it.
KXPCode MCalverinScript_Module::Release() {
    ExpectThread(ThreadWord::HostMain, "IKXPModule::Release");
    if (instance != this)
        return KXP_OK;
    m_isReleased = true;
    if (m_making > 0)
        return KXP_OK;
    instance = nullptr;
    bool allEnded = true;
    for (MCalverinScript_Device* device : m_devices.Snapshot()) {
        device->LetGo();
        allEnded = allEnded && device->HasEnded();
    }
    SetupInterface::ClosePanels();
    Empty();
    delete std::exchange(released, this);
    // A script that still runs hears of its end through an event, which takes an application.
    if (MCalverinScript_Device::SweepAbandoned() == 0 && allEnded)
        QMfcApp::EndPluginInstance();
    return KXP_OK;
}

void MCalverinScript_Module::Empty() {
    m_devices.Clear();
    m_host = nullptr;
    m_deviceHost = nullptr;
    m_bitmap.reset();
    m_driverList.clear();
    MSelectorWizard::SetPlace(nullptr, nullptr);
}

KXPCode MCalverinScript_Module::Initialize(IMInterface* hostRoot, void* /*ignored1*/, void* /*ignored2*/) {
    ExpectThread(ThreadWord::HostMain, "IKXPModule::Initialize");
    m_host = hostRoot;
    return WithinMemory(KXP_NOT_IMPLEMENTED, [this] {
        RegisterSelectors();
        OpenLog(ModuleHandle(), kProgramName, m_host);
        TakeDateFormat();
        LearnHost();
        return KXPCode{KXP_OK};
    });
}

void MCalverinScript_Module::RegisterSelectors() {
    auto* factories = QueryFace<IObjectFactoryManager>(m_host, "IObjectFactoryManager");
    MSelectorWizard::SetPlace(m_host, this);
    for (MSelectorWizard* selector :
         std::initializer_list<MSelectorWizard*>{&m_scriptSelector, &m_scriptTextSelector, &m_functionSelector})
        if (factories != nullptr)
            factories->RegisterFactory(selector->GetRegisteredName(), selector);
}

/// Dates of scripts and settings are read as the machine's user writes them.
void MCalverinScript_Module::TakeDateFormat() {
    const QByteArray pattern = ToHostText(QLocale::system().dateFormat(QLocale::ShortFormat));
    SetDefaultDateFormat(DateFormatOfPattern(pattern.constData()));
}

void MCalverinScript_Module::LearnHost() {
    auto* info = QueryFace<IManagerRuntimeInfo>(m_host, "IManagerRuntimeInfo");
    KXPRuntimeInfo record = {};
    record.size = sizeof(record);
    if (info == nullptr || info->GetRuntimeInfo(&record) == 0)
        return;
    TakeVersion(std::string(record.version, strnlen(record.version, sizeof(record.version))));
    if (std::strncmp(record.appName, kRunTimeHostPrefix, std::strlen(kRunTimeHostPrefix)) == 0)
        m_debuggerAllowed = false;
}

void MCalverinScript_Module::TakeVersion(const std::string& version) {
    std::size_t start = 0;
    for (std::int32_t* number : {&m_hostMajor, &m_hostMinor, &m_hostBuild}) {
        if (start > version.size())
            return;
        const std::size_t end = std::min(version.find('.', start), version.size());
        if (*number == -1 && end > start)
            *number = std::atoi(version.substr(start, end - start).c_str());
        start = end + 1;
    }
}

KXPCode MCalverinScript_Module::Terminate(void* /*ignored*/) {
    ExpectThread(ThreadWord::HostMain, "IKXPModule::Terminate");
    if (auto* factories = QueryFace<IObjectFactoryManager>(m_host, "IObjectFactoryManager")) {
        // The text selector stays registered: hosts have come to count on finding it there.
        factories->UnregisterFactory(m_scriptSelector.GetRegisteredName());
        factories->UnregisterFactory(m_functionSelector.GetRegisteredName());
    }
    CloseLog();
    return KXP_OK;
}

KXPCode MCalverinScript_Module::SetDeviceHost(void* newDeviceHost) {
    ExpectThread(ThreadWord::HostMain, "IKXPModule::SetDeviceHost");
    m_deviceHost = newDeviceHost;
    return KXP_OK;
}

const char* MCalverinScript_Module::GetDefinition() {
    ExpectThread(ThreadWord::HostMain, "IKXPModule::GetDefinition");
    const char* text = nullptr;
    RunWithinMemory([&] {
        m_definition.LoadFromResource(ModuleHandle(), kDefinitionId);
        text = m_definition.GetText();
    });
    return text;
}

KXPCode MCalverinScript_Module::GetModuleVersion(std::uint32_t* out) {
    ExpectThread(ThreadWord::HostMain, "IKXPModule::GetModuleVersion");
    if (out != nullptr)
        *out = kModuleVersion;
    return KXP_OK;
}

KXPCode MCalverinScript_Module::GetDeviceCount(std::uint32_t* out) {
    ExpectThread(ThreadWord::HostMain, "IKXPModule::GetDeviceCount");
    if (out != nullptr)
        *out = static_cast<std::uint32_t>(m_devices.Count());
    return KXP_OK;
}

KXPCode MCalverinScript_Module::CreateDevice(void* /*ignored*/, IKXPDevice** out) {
    ExpectThread(ThreadWord::HostMain, "IKXPModule::CreateDevice");
    if (out == nullptr || *out != nullptr)
        return KXP_NULL_ARGUMENT;
    if (m_deviceHost == nullptr)
        return KXP_NO_DEVICE_HOST;
    if (m_isReleased)
        return KXP_NO_DEVICE_MADE;
    ++m_making;
    const KXPCode code = WithinMemory(KXP_NO_DEVICE_MADE, [this, out] { return MakeDevice(out); });
    --m_making;
    if (!m_isReleased)
        return code;
    if (*out != nullptr)
        std::exchange(*out, nullptr)->Release();
    Release();
    return KXP_NO_DEVICE_MADE;
}

KXPCode MCalverinScript_Module::MakeDevice(IKXPDevice** out) {
    if (!CanOpenDescriptors(kDescriptorsOfDevice) || !HasSpaceForDevice())
        return KXP_NO_DEVICE_MADE;
    const auto release = [](MCalverinScript_Device* device) { device->Release(); };
    std::unique_ptr<MCalverinScript_Device, decltype(release)> device(
        new MCalverinScript_Device(this, m_setupInterface.get(), nullptr), release);
    if (!device->IsUsable())
        return KXP_NO_DEVICE_MADE;
    m_devices.Add(device.get());
    device->GetStoredSetup().SetDeviceNumber(static_cast<std::uint32_t>(m_devices.Count()));
    *out = device.release();
    return KXP_OK;
}

IKXPDevice* MCalverinScript_Module::GetDevice(std::uint32_t index) {
    ExpectThread(ThreadWord::HostMain, "IKXPModule::GetDevice");
    return dynamic_cast<MCalverinScript_Device*>(MKXPDeviceBase::GetByIndex(index));
}

void MCalverinScript_Module::RemoveDevice(MCalverinScript_Device* device) {
    m_devices.Remove(device);
}

KXPCode MCalverinScript_Module::CheckCommand(void* /*ignored*/, IKXPDevice* device, std::int32_t id,
                                             IObjectParams* params) {
    ExpectThread(ThreadWord::HostMain, "IKXPModule::CheckCommand");
    MCalverinScript_Device* ours = AsOurDevice(device);
    if (ours == nullptr)
        return KXP_OK;
    const HostDoor::Visit visit(ours->GetDoor()); // the host may release the device when the collection is asked
    return WithinMemory(KXP_COMMANDS_CHANGED, [&] {
        const std::string number = std::to_string(ours->GetStoredSetup().GetDeviceNumber());
        if (params != nullptr)
            params->SetProperty(kDeviceIdProperty, number.c_str(), 0, 0);
        return kValidationCodes[ours->ValidateCommand(id, params)];
    });
}
