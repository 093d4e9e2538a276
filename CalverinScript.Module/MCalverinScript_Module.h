#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include <QByteArray>

#include "IKXPModule.h"
#include "IModuleServices.h"
#include "MKXPXmlDefinition.h"
#include "MLockedList.h"
#include "MSelectorWizard.h"

class MCalverinScript_Device;
class QImage;
class SetupInterface;

/// The module: the one object through which a host reaches this plug-in. It offers one type of device, makes devices,
/// keeps them in a list, knows what host it lives in, and owns the library of script drivers on disk.
class MCalverinScript_Module : public IKXPModule, public IKXPModuleDriverManager, public IModuleServices {
public:
    /// The longest path that is handed out, with its NUL.
    static constexpr std::size_t kPathSize = 1024;

    /// The module object, made at the first call and the same until it is released.
    /// @return 0, 2 out is null, 6 it could not be made.   [host main]
    static KXPCode GetEntryPoint(IKXPModule** out);

    MCalverinScript_Module(const MCalverinScript_Module&) = delete;
    MCalverinScript_Module& operator=(const MCalverinScript_Module&) = delete;

    // IMInterface, for both faces
    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override;

    // IKXPModule
    KXPCode Initialize(IMInterface* hostRoot, void* ignored1, void* ignored2) override;
    KXPCode Terminate(void* ignored) override;
    KXPCode SetDeviceHost(void* newDeviceHost) override;
    const char* GetDefinition() override;
    KXPCode GetModuleVersion(std::uint32_t* out) override;
    KXPCode GetDeviceCount(std::uint32_t* out) override;
    KXPCode CreateDevice(void* ignored, IKXPDevice** out) override;
    IKXPDevice* GetDevice(std::uint32_t index) override;
    KXPCode CheckCommand(void* ignored, IKXPDevice* device, std::int32_t id, IObjectParams* params) override;

    // IKXPModuleDriverManager
    KXPCode GetDriverList(char** out, std::uint32_t* outSize) override;
    KXPCode ShowDriverSetup(const char* driver, IKXPDevice* device, void* third) override;
    KXPBitmap GetDriverBitmap() override;

    // IModuleServices
    IMInterface* GetHost() override { return m_host; }
    const char* GetDefinitionTemplate() override { return GetDefinition(); }
    void GetConfigFilePath(char* buffer) override;
    /// Found, and older folders moved there, at the first call.
    const char* GetScriptsFolder() override;
    bool IsDebuggerAllowed() const override { return m_debuggerAllowed; }
    bool IsHostAtLeast642() const override;
    bool IsHostAtLeast643() const override;
    MLockedList<MCalverinScript_Device*>* GetDeviceList() override { return &m_devices; }
    void RemoveDevice(MCalverinScript_Device* device) override;

    /// The host's version numbers, -1 where it told none. @return false on a null argument.   [any]
    bool GetHostVersion(std::int32_t* major, std::int32_t* minor, std::int32_t* build) const;
    /// Keeps the list of devices still; calls nest, and count may stand for several.   [any]
    void LockDevices(int count = 1) { m_devices.Lock(count); }
    void UnlockDevices(int count = 1) { m_devices.Unlock(count); }
    /// The devices in order of creation. Hold the lock for a walk.   [any]
    MLockedList<MCalverinScript_Device*>& GetDevices() { return m_devices; }

private:
    MCalverinScript_Module();
    virtual ~MCalverinScript_Module();

    KXPCode MakeDevice(IKXPDevice** out);
    void RegisterSelectors();
    void TakeDateFormat();
    void LearnHost();
    void TakeVersion(const std::string& version);
    bool IsHostAtLeast(std::int32_t major, std::int32_t minor, std::int32_t build) const;

    void Empty();

    static MCalverinScript_Module* instance; ///< host main, as is the next
    static MCalverinScript_Module* released; ///< the last one that was released; owned

    MKXPXmlDefinition m_definition; ///< remade by each GetDefinition
    bool m_isReleased = false;
    int m_making = 0;             ///< calls of CreateDevice, one inside the other
    void* m_deviceHost = nullptr; ///< not used, but required before a device is made
    std::unique_ptr<QImage> m_bitmap;
    MScriptSelectorWizard m_scriptSelector;
    MScriptTextSelectorWizard m_scriptTextSelector;
    MFunctionSelectorWizard m_functionSelector;
    std::unique_ptr<SetupInterface> m_setupInterface;
    MLockedList<MCalverinScript_Device*> m_devices; ///< not owned
    std::int32_t m_hostMajor = -1;
    std::int32_t m_hostMinor = -1;
    std::int32_t m_hostBuild = -1;
    bool m_debuggerAllowed = true; ///< false on the run-time host, which has no editing interface
    QByteArray m_driverList;       ///< last result of GetDriverList
    std::string m_scriptsFolder;   ///< found at the first question
    IMInterface* m_host = nullptr; ///< not owned
};
