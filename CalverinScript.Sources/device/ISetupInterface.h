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
    /// Makes the control panel, released by the host. @return null when there is none.   [host main]
    virtual IKXPDevicePanel* CreateControlPanel(MCalverinScript_Device& device) = 0;
    /// Tells a panel whether its device runs, and in which user mode.   [any]
    virtual void PostRunState(IKXPDevicePanel* panel, bool running, std::uint32_t userMode) = 0;

protected:
    ~ISetupInterface() = default;
};
