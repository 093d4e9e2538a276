#include "ModuleHost.h"

#include <cstring>
#include <exception>
#include <filesystem>
#include <utility>

#include "CommandTags.h"
#include "FaceAnswer.h"
#include "Finding.h"

ModuleHost::ModuleHost()
    : m_folder((std::filesystem::temp_directory_path() / "kxpvalidate-XXXXXX").string()) {
    if (mkdtemp(m_folder.data()) == nullptr)
        throw Finding("there is no room for temporary files; promised: nothing, this is the machine's fault");
}

ModuleHost::~ModuleHost() {
    Unload();
    if (std::uncaught_exceptions() > 0)
        static_cast<void>(m_library.release()); // what was thrown may be of a type of the module's
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

std::string ModuleHost::Open(const std::string& file) {
    if (!m_library->Open(file))
        return m_library->GetError();
    m_entry = m_library->FindFunction<KXPEntryPoint>(KXP_ENTRY_POINT_NAME);
    if (m_entry == nullptr)
        return file + " has no GetKXPEntryPoint";
    const KXPCode code = CallModule("GetKXPEntryPoint", [this] { return m_entry(&m_module); });
    if (code != KXP_OK || m_module == nullptr)
        return "GetKXPEntryPoint answers " + std::to_string(code) + " and gives " +
               (m_module == nullptr ? "no module" : "a module") + "; promised: 0 and a module";
    CallModule("IKXPModule::Initialize", [this] { return m_module->Initialize(Root(), nullptr, nullptr); });
    return {};
}

void ModuleHost::Introduce() {
    CallModule("IKXPModule::SetDeviceHost", [this] { return m_module->SetDeviceHost(this); });
}

std::string ModuleHost::Load(const std::string& file) {
    std::string problem = Open(file);
    if (problem.empty())
        Introduce();
    return problem;
}

void ModuleHost::Unload() {
    if (IKXPModule* module = std::exchange(m_module, nullptr)) {
        module->Terminate(nullptr);
        module->Release();
    }
}

void ModuleHost::Hear(const char* call) const {
    if (hearing)
        hearing(call);
}

KXPCode ModuleHost::QueryInterface(const char* name, void** out) {
    Hear("QueryInterface");
    return AnswerFace(name, out,
                      {{"IMInterface", Root()},
                       {"IManagerRuntimeInfo", static_cast<IManagerRuntimeInfo*>(this)},
                       {"IFolderManager", static_cast<IFolderManager*>(this)},
                       {"IObjectFactoryManager", static_cast<IObjectFactoryManager*>(this)},
                       {m_isOlder ? "IManagerRemoteManager" : "IManagerRemoteManager2",
                        m_isOlder ? static_cast<void*>(static_cast<IManagerRemoteManager*>(&m_olderManager))
                                  : static_cast<void*>(static_cast<IManagerRemoteManager2*>(this))},
                       {"IResourceProvider", static_cast<IResourceProvider*>(m_resources.get())}});
}

std::uint32_t ModuleHost::GetLogSettings(std::uint32_t*, std::uint32_t*, char*, std::uint32_t*, std::uint32_t*) {
    Hear("GetLogSettings");
    return 0xFFFFFFFFU;
}

KXPWindow ModuleHost::GetMainWindow() {
    Hear("GetMainWindow");
    return 0;
}

std::uint32_t ModuleHost::GetRuntimeInfo(KXPRuntimeInfo* out) {
    Hear("GetRuntimeInfo");
    if (out == nullptr || out->size != sizeof(KXPRuntimeInfo))
        return 0;
    std::strcpy(out->appName, "kxpvalidate");
    std::strcpy(out->version, "6.7.2");
    return 1;
}

const char* ModuleHost::GetFolder(std::uint32_t) {
    Hear("GetFolder");
    return m_folder.c_str();
}

KXPCode ModuleHost::RegisterFactory(const char* name, IObjectFactory* factory) {
    Hear("RegisterFactory");
    if (name == nullptr || factory == nullptr)
        return KXP_NULL_ARGUMENT;
    m_factories[name] = factory;
    return KXP_OK;
}

KXPCode ModuleHost::UnregisterFactory(const char* name) {
    Hear("UnregisterFactory");
    if (name == nullptr)
        return KXP_NULL_ARGUMENT;
    return m_factories.erase(name) == 1 ? KXP_OK : KXPCode{KXP_NOT_IMPLEMENTED};
}

KXPCode ModuleHost::OlderManager::QueryInterface(const char* name, void** out) {
    return AnswerFace(name, out, {{"IManagerRemoteManager", static_cast<IManagerRemoteManager*>(this)}});
}

IManagerRemote* ModuleHost::OlderManager::GetRemote() {
    host.Hear("GetRemote");
    return &link;
}

IManagerRemote2* ModuleHost::GetRemote(IKXPDevice* device) {
    Hear("GetRemote");
    auto& link = m_links[device];
    if (!link)
        link = std::make_unique<HostLink>(hearing, answering);
    return link.get();
}

HostLink* ModuleHost::LinkOf(const IKXPDevice* device) const {
    const auto found = m_links.find(device);
    return found != m_links.end() ? found->second.get() : nullptr;
}

HostedDevice::HostedDevice(ModuleHost& host, const std::string& name)
    : m_host(host)
    , m_variables(new HostVariables(host.hearing)) {
    const KXPCode code =
        CallModule("IKXPModule::CreateDevice", [this] { return m_host.Module().CreateDevice(nullptr, &m_device); });
    if (code != KXP_OK || m_device == nullptr)
        throw Finding("IKXPModule::CreateDevice answers " + std::to_string(code) + " and gives " +
                      (m_device == nullptr ? "no device" : "a device") + "; promised: 0 and a device");
    GuardedName(m_variables.get(), "the variables of a device that is gone");
    CallModule("IKXPDevice::SetDeviceVariables", [this] { m_device->SetDeviceVariables(m_variables.get()); });
    CallModule("IKXPDevice::SetName(" + name + ")", [&] { m_device->SetName(name.c_str()); });
    CallModule("IKXPDevice::GetDefinition", [this] { return m_device->GetDefinition(); });
}

HostedDevice::~HostedDevice() {
    End();
}

void HostedDevice::End() {
    if (m_device != nullptr) {
        const IKXPDevice* const gone = m_device;
        m_device->Stop(); // who is called from inside may still ask the device
        std::exchange(m_device, nullptr)->Release();
        m_host.DropLink(gone);
        m_variables->Drop();
        m_variables.reset();
        m_kept.clear();
    }
}

IKXPDevice* HostedDevice::GiveUp() {
    return std::exchange(m_device, nullptr);
}

std::int32_t HostedDevice::CommandId(const std::string& name) const {
    for (const CommandTag& command : CommandsOf(m_device->GetDefinition()))
        if (command.name == name)
            return command.id;
    return -1;
}

KXPCode HostedDevice::Send(std::int32_t id, const std::vector<std::string>& texts, ContextTally* tally) {
    auto params = std::make_unique<HostParams>(texts, m_host.hearing);
    if (tally == nullptr) {
        m_kept.push_back(std::move(params));
        return m_device->ExecuteCommand(id, m_kept.back().get(), nullptr);
    }
    HostParams* borrowed = params.get();
    auto* context = new HostContext(*tally, std::move(params), m_host.hearing);
    const auto isBegun = context->IsBegun();
    const KXPCode code = m_device->ExecuteCommand(id, borrowed, context);
    if (code != KXP_OK && !*isBegun)
        context->Abandon(); // nobody will end it
    return code;
}

KXPCode HostedDevice::SendNulls(std::int32_t id, std::size_t count) {
    m_kept.push_back(std::make_unique<HostParams>(std::vector<std::string>(count), m_host.hearing));
    m_kept.back()->LoseTexts();
    return m_device->ExecuteCommand(id, m_kept.back().get(), nullptr);
}

std::string HostedDevice::Setup() const {
    char* text = nullptr;
    if (m_device->GetSetup(&text) != KXP_OK || text == nullptr)
        return "(none)";
    std::string copy = text;
    GiveBack(text);
    return copy;
}

void HostedDevice::GiveBack(char* text) const {
    const KXPCode code = m_device->ReleaseString(&text);
    if (code != KXP_OK || text != nullptr)
        throw Finding("IKXPDevice::ReleaseString of what GetSetup gave answers " + std::to_string(code) +
                      (text != nullptr ? " and leaves the pointer" : "") + "; promised: 0 and a null pointer");
}
