#pragma once

#include <cstddef>

template <class T>
class MLockedList;
class IMInterface;
class MCalverinScript_Device;

/// What a device needs of the module above it.
class IModuleServices {
public:
    /// The root object that the host gave; null before Initialize.   [any]
    virtual IMInterface* GetHost() = 0;
    /// The device definition template; null when missing. Valid until the next call.   [host main]
    virtual const char* GetDefinitionTemplate() = 0;
    /// What a path of the configuration file takes at most, with its NUL.
    static constexpr std::size_t kConfigPathSize = 1024;
    /// Path of the configuration file. @param buffer of kConfigPathSize characters.   [host main]
    virtual void GetConfigFilePath(char* buffer) = 0;
    /// The script library's folder; null when there is none. Valid as long as the module.   [host main]
    virtual const char* GetScriptsFolder() { return nullptr; }
    /// Whether the host is one that may show the debugger.   [host main]
    virtual bool IsDebuggerAllowed() const = 0;
    /// Whether each of the host's three version numbers is at least that of 6.4.2.   [any]
    virtual bool IsHostAtLeast642() const = 0;
    /// The same with 6.4.3.   [any]
    virtual bool IsHostAtLeast643() const = 0;
    /// The module's devices in order of creation; null when there is no such list. Hold its lock for
    /// a walk.   [host main]
    virtual MLockedList<MCalverinScript_Device*>* GetDeviceList() { return nullptr; }
    /// Takes a device out of the module's list.   [host main]
    virtual void RemoveDevice(MCalverinScript_Device* device) = 0;

protected:
    ~IModuleServices() = default;
};
