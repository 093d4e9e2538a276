#pragma once

#include <memory>
#include <string>
#include <vector>

#include "DynamicLibrary.h"
#include "HostValues.h"
#include "IKXPModule.h"
#include "IManagerRuntimeInfo.h"

/// A host in plain C++ with one module: what the module is given at Initialize, and the module itself.   [host main]
class ModuleHost : public IManagerRuntimeInfo, public IFolderManager {
public:
    ModuleHost();
    virtual ~ModuleHost();
    ModuleHost(const ModuleHost&) = delete;
    ModuleHost& operator=(const ModuleHost&) = delete;

    /// Loads the file, initialises its module. @return what is wrong; empty when nothing is.
    std::string Load(const std::string& file);
    /// Terminates and releases the module; harmless twice.
    void Unload();
    /// The module has been released by other hands.
    void Forget() { m_module = nullptr; }
    IKXPModule& Module() { return *m_module; }

    /// Heard before each call that the module makes on this host, on whatever thread it comes. Set before a device is
    /// started.
    Hearing hearing;

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return KXP_OK; }
    std::uint32_t GetLogSettings(std::uint32_t*, std::uint32_t*, char*, std::uint32_t*, std::uint32_t*) override;
    KXPWindow GetMainWindow() override { return 0; }
    std::uint32_t GetRuntimeInfo(KXPRuntimeInfo* out) override;
    std::uint32_t GetUserMode() override { return 0; }
    const char* GetFolder(std::uint32_t) override;

private:
    void Hear(const char* call) const;

    DynamicLibrary m_library;
    IKXPModule* m_module = nullptr;
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
    /// The setup, given back to the device. @return "(none)" when there is none.
    std::string Setup() const;

private:
    ModuleHost& m_host;
    IKXPDevice* m_device = nullptr;
    std::unique_ptr<HostVariables> m_variables;
    std::vector<std::unique_ptr<HostParams>> m_kept; ///< of commands without a context, which may read them later
};
