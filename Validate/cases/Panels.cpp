#include "BusyScript.h"
#include "Cases.h"
#include "IKXPDevicePanel.h"

namespace {

IKXPDevicePanel* MakePanel(HostedDevice& device) {
    IKXPDevicePanel* panel = nullptr;
    const KXPCode code = device->CreatePanel(1, &panel);
    if (code == KXP_NOT_IMPLEMENTED && panel == nullptr)
        throw Skipped("the module has no panel to give here");
    Trial::ExpectCode(code, KXP_OK, "CreatePanel");
    Trial::Expect(panel != nullptr, "CreatePanel gives a panel");
    return panel;
}

/// What a host asks of a panel that it shows.
void Use(IKXPDevicePanel& panel) {
    void* out = nullptr;
    Trial::ExpectCode(panel.QueryInterface("INobodyHasThis", &out), KXP_NO_INTERFACE, "the panel's QueryInterface");
    Trial::Expect(panel.GetName() != nullptr, "a panel has a name");
    Trial::Expect(!panel.GetBounds(nullptr), "GetBounds into null");
    panel.GetWindow();
    panel.SetState(KXP_PANEL_STATE, 7);
    Trial::Expect(panel.GetState() == 7, "GetState gives what SetState was given");
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
            Trial::ExpectCode(panel->Release(), KXP_OK, "the panel's Release");
            device.End();
        } else {
            trial.Step("a panel that outlives its device");
            device.End();
            Use(*panel);
            Trial::ExpectCode(panel->Release(), KXP_OK, "the panel's Release");
        }
    }
}
