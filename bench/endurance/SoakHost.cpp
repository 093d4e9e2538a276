#include "SoakHost.h"

#include <cstring>
#include <vector>

#include <dlfcn.h>

SoakHost::SoakHost() {
    m_variable.m_keepsHistory = false;
    variableManager = this;
}

IKXPModule* SoakHost::Module() {
    static IKXPModule* module = [this] {
        void* file = dlopen(MODULE_FILE, RTLD_NOW | RTLD_LOCAL);
        const auto entry =
            file != nullptr ? reinterpret_cast<KXPEntryPoint>(dlsym(file, KXP_ENTRY_POINT_NAME)) : nullptr;
        IKXPModule* made = nullptr;
        if (entry == nullptr || entry(&made) != KXP_OK)
            return static_cast<IKXPModule*>(nullptr);
        made->Initialize(Root(), nullptr, nullptr);
        made->SetDeviceHost(this);
        return made;
    }();
    return module;
}

void SoakHost::SetDevice(const std::string& name, IKXPDevice* device) {
    const std::unique_lock<std::shared_mutex> hold(m_devicesLock);
    m_devices[name] = device;
}

void SoakHost::CloseLink(IKXPDevice* device) {
    std::shared_ptr<SoakLink> link;
    {
        const std::lock_guard<std::mutex> hold(m_linksLock);
        const auto found = m_links.find(device);
        link = found != m_links.end() ? found->second : nullptr;
    }
    if (link)
        link->Close();
}

void SoakHost::DropLink(IKXPDevice* device) {
    const std::lock_guard<std::mutex> hold(m_linksLock);
    m_links.erase(device);
}

void SoakHost::SendTo(const std::string& name, Request* request) {
    const std::shared_lock<std::shared_mutex> hold(m_devicesLock);
    const auto found = m_devices.find(name);
    if (found != m_devices.end() && found->second != nullptr) {
        request->Send(*found->second);
        return;
    }
    ++ledger.refused;
    delete request;
}

void SoakHost::TellAll(const std::string& value) {
    std::vector<std::shared_ptr<SoakLink>> links;
    {
        const std::lock_guard<std::mutex> hold(m_linksLock);
        for (const auto& [device, link] : m_links)
            links.push_back(link);
    }
    for (const auto& link : links)
        link->Tell("Level", value);
}

KXPCode SoakHost::QueryInterface(const char* name, void** out) {
    const KXPCode code = plain::Host::QueryInterface(name, out);
    asked.clear(); // nobody reads it here, and it would grow
    if (name == nullptr || out == nullptr || std::strcmp(name, "IManagerRemoteManager2") != 0)
        return code;
    *out = static_cast<IManagerRemoteManager2*>(this);
    return KXP_OK;
}

IData* SoakHost::FindVariable(const char* /*name*/) {
    return faults.Strike() ? nullptr : &m_variable;
}

IManagerRemote2* SoakHost::GetRemote(IKXPDevice* device) {
    const std::lock_guard<std::mutex> hold(m_linksLock);
    auto& link = m_links[device];
    if (link == nullptr)
        link = std::make_shared<SoakLink>(*this);
    return link.get();
}
