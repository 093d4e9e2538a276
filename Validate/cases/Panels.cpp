#include "BusyScript.h"
#include "Cases.h"
#include "Faces.h"
#include "IKXPDevicePanel.h"

namespace {

IKXPDevicePanel* MakePanel(HostedDevice& device) {
    IKXPDevicePanel* panel = nullptr;
    const KXPCode code = device->CreatePanel(1, &panel);
    if (code == KXP_NOT_IMPLEMENTED && panel == nullptr)
        throw Skipped("the module has no panel to give here");
    Trial::ExpectCode(code, KXP_OK, "IKXPDevice::CreatePanel(1)");
    Trial::Expect(panel != nullptr, "IKXPDevice::CreatePanel(1) answers 0 and gives null", "a panel");
    return panel;
}

/// What a host asks of a panel that it shows.
void Use(IKXPDevicePanel& panel) {
    ExpectExactNames(panel, {"IKXPDevicePanel"}, "IKXPDevicePanel");
    Trial::Expect(panel.GetName() != nullptr, "IKXPDevicePanel::GetName() gives null", "a text");
    Trial::Expect(!panel.GetBounds(nullptr), "IKXPDevicePanel::GetBounds(null) gives true", "false");
    panel.GetWindow();
    panel.SetState(KXP_PANEL_STATE, 7);
    Trial::ExpectCode(panel.GetState(), 7, "IKXPDevicePanel::GetState() behind SetState(1, 7)");
    panel.SetState(KXP_PANEL_VISIBLE, 1);
    panel.SetState(KXP_PANEL_VISIBLE, 0);
}

} // namespace

/// A panel goes before its device, with it, or after it.
void LetsGoOfPanels(Trial& trial) {
    ModuleHost host;
    LoadOrFail(host, trial);
    for (int round = trial.Times(1000, 6); round > 0; --round) {
        HostedDevice device(host);
        StartBusy(device);
        trial.Step("CreatePanel");
        IKXPDevicePanel* const panel = MakePanel(device);
        Use(*panel);
        trial.Step("a panel beside Stop, Start and SetSetup");
        device->Stop();
        device->Start();
        device->SetSetup(BusySetup(", Other: function () {}").c_str());
        Use(*panel);
        if (round % 2 == 0) {
            trial.Step("a panel that is released first");
            Trial::ExpectCode(panel->Release(), KXP_OK, "IKXPDevicePanel::Release()");
            device.End();
        } else {
            trial.Step("a panel that outlives its device");
            device.End();
            Use(*panel);
            Trial::ExpectCode(panel->Release(), KXP_OK, "IKXPDevicePanel::Release()");
        }
    }
}
