#include "SetupInterface.h"

#include <optional>

#include "BusyCursor.h"
#include "HostScreen.h"
#include "HostText.h"
#include "IModuleServices.h"
#include "MCalverinScript_Device.h"
#include "PanelList.h"
#include "QMfcApp.h"
#include "QWinWidget.h"
#include "SetupDesk.h"
#include "TCalverinScript_ControlPanel.h"
#include "ThemeStyleSheet.h"
#include "WidgetCalverinScriptGUI.h"

namespace {

void RebuildCompletions(MCalverinScript_Device& device) {
    const BusyCursor busy;
    device.RebuildCompletionTable(device.GetStoredSetup().GetChoices().autoCompletion);
}

KXPCode RunDialog(MCalverinScript_Device& device, const char* scriptName) {
    IMInterface* host = device.GetModule() != nullptr ? device.GetModule()->GetHost() : nullptr;
    const QPointer<MCalverinScript_Device> kept(&device);
    const ModalLoop loop;
    std::optional<HostDoor::Visit> visit(std::in_place,
                                         device.GetDoor()); // the host may release it whenever it is asked
    QWinWidget parent(MainWindowOf(host));
    WidgetCalverinScriptGUI dialog(&parent);
    QObject::connect(&parent, &QWinWidget::SignalParentGone, &dialog, &WidgetCalverinScriptGUI::SlotGiveUp);
    WearTheme(dialog, host);
    parent.Adopt(dialog);
    RebuildCompletions(device);
    if (device.GetDoor().IsClosed())
        return KXP_CANCELLED;
    device.GetSetupDesk().Begin();
    dialog.LoadFromDevice(&device);
    if (scriptName != nullptr && !device.GetDoor().IsClosed())
        dialog.OpenScript(FromHostText(scriptName));
    if (device.GetDoor().IsClosed())
        return KXP_CANCELLED;
    visit.reset(); // while the user works the device may be released and end
    const bool isAccepted = dialog.exec() == QDialog::Accepted;
    if (kept == nullptr || kept->GetDoor().IsClosed())
        return KXP_CANCELLED;
    visit.emplace(device.GetDoor());
    const BusyCursor busy;
    return isAccepted ? dialog.StoreToDevice(&device) : device.GetSetupDesk().Cancel();
}

} // namespace

KXPCode SetupInterface::ShowSetup(MCalverinScript_Device& device, const char* scriptName) {
    if (!CanShowDialogs() || m_open.contains(&device))
        return KXP_CANCELLED;
    m_open.insert(&device);
    const KXPCode code = RunDialog(device, scriptName);
    m_open.remove(&device);
    return code;
}

IKXPDevicePanel* SetupInterface::CreateControlPanel(MCalverinScript_Device& device) {
    if (!CanMakeWindows())
        return nullptr;
    IMInterface* host = device.GetModule() != nullptr ? device.GetModule()->GetHost() : nullptr;
    return new TCalverinScript_ControlPanel(MainWindowOf(host), device);
}

bool SetupInterface::HasPanel(const MCalverinScript_Device& device) {
    return PanelList::Get().Has(device);
}

void SetupInterface::PostRunState(const MCalverinScript_Device& device, bool running, std::uint32_t userMode) {
    PanelList::Get().Post(device, running, userMode);
}

void SetupInterface::ForgetDevice(const MCalverinScript_Device& device) {
    PanelList::Get().ForgetDevice(device);
}

void SetupInterface::ClosePanels() {
    PanelList::Get().CloseWindows();
}
