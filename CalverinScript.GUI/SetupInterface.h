#pragma once

#include <QSet>

#include "ISetupInterface.h"

/// The one door through which devices reach the dialogs.   [host main]
class SetupInterface final : public ISetupInterface {
public:
    KXPCode ShowSetup(MCalverinScript_Device& device, const char* scriptName) override;
    IKXPDevicePanel* CreateControlPanel(MCalverinScript_Device& device) override;
    bool HasPanel(const MCalverinScript_Device& device) override;
    void PostRunState(const MCalverinScript_Device& device, bool running, std::uint32_t userMode) override;
    void ForgetDevice(const MCalverinScript_Device& device) override;

    /// Every panel gives its window up, before Qt's application object may go.
    static void ClosePanels();

private:
    QSet<MCalverinScript_Device*> m_open; ///< devices whose dialog is open
};
