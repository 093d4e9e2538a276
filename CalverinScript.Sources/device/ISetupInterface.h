#pragma once

#include "KXPTypes.h"

class IKXPDevicePanel;
class MCalverinScript_Device;

/// The one door through which a device asks for its dialogs and panels.
class ISetupInterface {
public:
    /// Shows the modal setup dialog, with a script of the library chosen when scriptName is given.
    /// @return as IKXPDevice::ShowSetup.   [host main]
    virtual KXPCode ShowSetup(MCalverinScript_Device& device, const char* scriptName) = 0;
    /// Makes a control panel, released by the host. @return null when there is none.   [host main]
    virtual IKXPDevicePanel* CreateControlPanel(MCalverinScript_Device& device) = 0;
    /// Whether a device has a panel.   [any]
    virtual bool HasPanel(const MCalverinScript_Device& device) = 0;
    /// Tells the panels of a device whether it runs, and in which user mode.   [any]
    virtual void PostRunState(const MCalverinScript_Device& device, bool running, std::uint32_t userMode) = 0;
    /// The device ends: its panels let go of it.   [host main]
    virtual void ForgetDevice(const MCalverinScript_Device& device) = 0;

protected:
    ~ISetupInterface() = default;
};
