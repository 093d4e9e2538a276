#pragma once

#include <memory>
#include <string>

#include <QObject>
#include <QPointer>

#include "IKXPDevicePanel.h"
#include "PanelUse.h"

class MCalverinScript_Device;
class QHBoxLayout;
class QWinWidget;
class WidgetMScriptControlPanel;

/// The control panel of a device: a native window in the host's, with the panel's widget in it.   [host main]
///
/// The host holds it and releases it, whenever it wants: before the device or after it, while a dialog of the panel is open, while
/// the device still loads a script for it, or from anything that it is asked.
class TCalverinScript_ControlPanel final : public QObject, public IKXPDevicePanel {
    Q_OBJECT

public:
    /// Stands hidden in the middle of the parent window. @param parentWindow 0 for none. @param device borrowed until ForgetDevice.
    TCalverinScript_ControlPanel(KXPWindow parentWindow, MCalverinScript_Device& device);
    ~TCalverinScript_ControlPanel() override;

    // IKXPDevicePanel
    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override;
    KXPWindow GetWindow() override;
    KXPCode Reserved4(void* argument) override;
    const char* GetName() override;
    KXPCode Reserved6(void* argument) override;
    bool GetBounds(IPanelRect* rect) override;
    std::uint32_t GetState() override;
    void SetState(std::uint32_t what, std::uint32_t value) override;

    /// The device ends. The panel goes on showing what it had.
    void ForgetDevice();
    /// Gives the window up, when the host's has gone or no window can be any more.
    void CloseWindow();

protected:
    /// News of the device.
    void customEvent(QEvent* event) override;

private:
    void MakeWindow();
    void Show();
    void Hide();
    bool IsAllowed() const;
    void EndUnlessUsed();

    const KXPWindow m_parentWindow;
    QPointer<MCalverinScript_Device> m_device; ///< null once it has ended
    PanelUse m_use;
    std::unique_ptr<QWinWidget> m_window;          ///< null without a window
    WidgetMScriptControlPanel* m_widget = nullptr; ///< stands in the window
    std::string m_name;                            ///< what GetName gives
    std::uint32_t m_state = 1;                     ///< the host's word
    bool m_isWanted = false;                       ///< whether the host has shown it last
    bool m_isWindowOver = false;                   ///< the window goes as soon as nobody is inside
    bool m_isReleased = false;
};
