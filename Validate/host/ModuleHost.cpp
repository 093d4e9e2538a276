#include "ModuleHost.h"

#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "FaceAnswer.h"

ModuleHost::ModuleHost()
    : m_folder((std::filesystem::temp_directory_path() / "kxpvalidate-XXXXXX").string()) {
    if (mkdtemp(m_folder.data()) == nullptr)
        throw std::runtime_error("there is no room for temporary files");
}

ModuleHost::~ModuleHost() {
    Unload();
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

std::string ModuleHost::Load(const std::string& file) {
    if (!m_library.Open(file))
        return m_library.GetError();
    const auto entry = m_library.FindFunction<KXPCode (*)(IKXPModule**)>("GetKXPEntryPoint");
    if (entry == nullptr)
        return file + " has no GetKXPEntryPoint";
    if (entry(&m_module) != KXP_OK || m_module == nullptr)
        return "GetKXPEntryPoint gives no module";
    m_module->Initialize(Root(), nullptr, nullptr);
    m_module->SetDeviceHost(this);
    return {};
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
    if (m_host.Module().CreateDevice(nullptr, &m_device) != KXP_OK || m_device == nullptr)
        throw std::runtime_error("CreateDevice gives no device");
    GuardedName(m_variables.get(), "the variables of a device that is gone");
    m_device->SetDeviceVariables(m_variables.get());
    m_device->SetName(name.c_str());
    m_device->GetDefinition();
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

/// Commands stand in the definition as `<Command ID="3" Name="..."`.
std::int32_t HostedDevice::CommandId(const std::string& name) const {
    const char* definition = m_device->GetDefinition();
    const std::string text = definition != nullptr ? definition : "";
    const auto place = text.find(" Name=\"" + name + "\"");
    const auto begin = place != std::string::npos ? text.rfind("<Command ID=\"", place) : place;
    return begin != std::string::npos ? std::atoi(text.c_str() + begin + std::strlen("<Command ID=\"")) : -1;
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
        delete context; // nobody will end it
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
    m_device->ReleaseString(&text);
    return copy;
}
