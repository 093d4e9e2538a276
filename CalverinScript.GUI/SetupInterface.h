#pragma once

#include <QSet>

#include "ISetupInterface.h"

/// The one door through which devices reach the dialogs.   [host main]
class SetupInterface final : public ISetupInterface {
public:
    KXPCode ShowSetup(MCalverinScript_Device& device, const char* scriptName) override;
    IKXPDevicePanel* CreateControlPanel(MCalverinScript_Device& device) override;
    void PostRunState(IKXPDevicePanel* panel, bool running, std::uint32_t userMode) override;

private:
    QSet<MCalverinScript_Device*> m_open; ///< devices whose dialog is open
};
