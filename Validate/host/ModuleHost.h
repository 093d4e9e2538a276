#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "DynamicLibrary.h"
#include "HostLink.h"
#include "HostOlderLink.h"
#include "HostResources.h"
#include "HostValues.h"
#include "IKXPModule.h"
#include "IManagerRuntimeInfo.h"
#include "IObjectFactory.h"
#include "IObjectFactoryManager.h"
#include "Lent.h"

/// A host in plain C++ with one module: what the module is given at Initialize, and the module itself.   [host main]
class ModuleHost : public IManagerRuntimeInfo,
                   public IFolderManager,
                   public IObjectFactoryManager,
                   public IManagerRemoteManager2 {
public:
    ModuleHost();
    virtual ~ModuleHost();
    ModuleHost(const ModuleHost&) = delete;
    ModuleHost& operator=(const ModuleHost&) = delete;

    /// Offers the older link alone from now on. Before Load.
    void OfferOlderLink() { m_isOlder = true; }
    HostOlderLink& OlderLink() { return m_olderManager.link; }
    /// Loads the file, initialises its module. @return what is wrong; empty when nothing is.
    std::string Open(const std::string& file);
    /// Tells the module its device host, which it needs for devices.
    void Introduce();
    /// Both. @return as Open.
    std::string Load(const std::string& file);
    /// Terminates and releases the module; harmless twice.
    void Unload();
    /// The module has been released by other hands.
    void Forget() { m_module = nullptr; }
    IKXPModule& Module() { return *m_module; }
    /// Of the file that was loaded.
    KXPEntryPoint EntryPoint() const { return m_entry; }

    /// Heard before each call that the module makes on this host, on whatever thread it comes. Set before a device is
    /// started.
    Hearing hearing;
    /// What requests of devices are answered with. Set before a device is started.
    Answering answering;

    IMInterface* Root() { return static_cast<IManagerRuntimeInfo*>(this); }
    HostResources& Resources() { return *m_resources; }
    /// What the module has registered and not taken back.
    const std::map<std::string, IObjectFactory*>& Factories() const { return m_factories; }
    /// Of a device; null when it never asked for one.
    HostLink* LinkOf(const IKXPDevice* device) const;
    /// The device is gone, and its link goes.
    void DropLink(const IKXPDevice* device) { m_links.erase(device); }

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return NoteRelease("the root"); }
    std::uint32_t GetLogSettings(std::uint32_t*, std::uint32_t*, char*, std::uint32_t*, std::uint32_t*) override;
    KXPWindow GetMainWindow() override;
    std::uint32_t GetRuntimeInfo(KXPRuntimeInfo* out) override;
    std::uint32_t GetUserMode() override { return 0; }
    const char* GetFolder(std::uint32_t) override;
    KXPCode RegisterFactory(const char* name, IObjectFactory* factory) override;
    KXPCode UnregisterFactory(const char* name) override;
    KXPCode Reserved1(void*) override { return KXP_NOT_IMPLEMENTED; }
    IManagerRemote2* GetRemote(IKXPDevice* device) override;

private:
    /// Both managers have an operation of one name, so this one is an object of its own.
    struct OlderManager final : IManagerRemoteManager {
        explicit OlderManager(const ModuleHost& itsHost)
            : host(itsHost)
            , link(*new HostOlderLink(itsHost.hearing)) {}
        ~OlderManager() { delete &link; }
        OlderManager(const OlderManager&) = delete;
        OlderManager& operator=(const OlderManager&) = delete;
        KXPCode QueryInterface(const char* name, void** out) override;
        KXPCode Release() override { return NoteRelease("IManagerRemoteManager"); }
        IManagerRemote* GetRemote() override;

        const ModuleHost& host;
        HostOlderLink& link;
    };

    void Hear(const char* call) const;

    bool m_isOlder = false;
    OlderManager m_olderManager{*this};
    std::unique_ptr<DynamicLibrary> m_library = std::make_unique<DynamicLibrary>();
    KXPEntryPoint m_entry = nullptr;
    IKXPModule* m_module = nullptr;
    const std::unique_ptr<HostResources> m_resources = std::make_unique<HostResources>(hearing);
    std::map<std::string, IObjectFactory*> m_factories;
    std::map<const IKXPDevice*, std::unique_ptr<HostLink>> m_links;
    std::string m_folder; ///< an empty one of this process, removed at the end
};

/// One device of the module, in the order of calls that the contract gives.   [host main]
class HostedDevice {
public:
    /// Creates it, gives it variables and a name, and asks for its definition.
    explicit HostedDevice(ModuleHost& host, const std::string& name = "desk");
    ~HostedDevice();
    HostedDevice(const HostedDevice&) = delete;
    HostedDevice& operator=(const HostedDevice&) = delete;

    IKXPDevice& operator*() const { return *m_device; }
    IKXPDevice* operator->() const { return m_device; }
    HostVariables& Variables() { return *m_variables; }

    /// Stops and releases it and deletes its variables; harmless twice.
    void End();
    /// Gives the device up without Stop and Release: something else has ended it.
    IKXPDevice* GiveUp();

    /// The id of a command by its name in the definition; -1 when there is none.
    std::int32_t CommandId(const std::string& name) const;
    /// Sends a command. @param isHeld whether it has a context, which the tally counts. @return as ExecuteCommand.
    KXPCode Send(std::int32_t id, const std::vector<std::string>& texts, ContextTally* tally = nullptr);
    /// Sends a command without a context whose values have no texts. @return as ExecuteCommand.
    KXPCode SendNulls(std::int32_t id, std::size_t count);
    /// The setup, given back to the device. @return "(none)" when there is none.
    std::string Setup() const;
    /// Gives a text of GetSetup or UpdateCommand back; throws a finding when that is not answered as promised.
    void GiveBack(char* text) const;

private:
    ModuleHost& m_host;
    IKXPDevice* m_device = nullptr;
    std::unique_ptr<HostVariables> m_variables;
    std::vector<std::unique_ptr<HostParams>> m_kept; ///< of commands without a context, which may read them later
};
