#pragma once

#include "IMInterface.h"

/// A rectangle of the host's that a panel fills in, in device pixels.
class IPanelRect {
public:
    virtual void SetLeft(std::int32_t left) = 0; ///< [host main], as the next three
    virtual void SetTop(std::int32_t top) = 0;
    virtual void SetWidth(std::int32_t width) = 0;
    virtual void SetHeight(std::int32_t height) = 0;

protected:
    ~IPanelRect() = default;
};

/// What SetState changes.
enum KXPPanelProperty : std::uint32_t {
    KXP_PANEL_VISIBLE = 0, ///< shown or hidden
    KXP_PANEL_STATE = 1    ///< the host's own state word
};

/// User modes of a host in which a device may keep its panel to itself, see IManagerRuntimeInfo::GetUserMode.
enum KXPUserMode : std::uint32_t {
    KXP_RUN_MODE = 2,  ///< the project runs
    KXP_USER_MODE = 17 ///< the project runs for a user who must not change it
};

/// A panel of a device, made by IKXPDevice::CreatePanel and given up with Release. It stands in the host's main window,
/// hidden at first. It may outlive its device, and then shows what it had, and it may be released at any time, also
/// while the user works in it.
class IKXPDevicePanel : public IMInterface {
public:
    /// The panel's native window, which is the panel's; 0 for none, as when the host's window has gone.   [host main]
    virtual KXPWindow GetWindow() = 0;
    /// @return 0 always.   [host main]
    virtual std::uint32_t Reserved4(void* argument) = 0;
    /// What the panel is called. Owned by the panel, valid until the next call.   [host main]
    virtual const char* GetName() = 0;
    /// @return 1 always.   [host main]
    virtual std::uint32_t Reserved6(void* argument) = 0;
    /// How large the panel is; left and top are 0. @return false when rect is null or the panel has
    /// no window.   [host main]
    virtual bool GetBounds(IPanelRect* rect) = 0;
    /// The host's state word, 1 at first.   [host main]
    virtual std::uint32_t GetState() = 0;
    /// Changes what KXPPanelProperty names; other numbers do nothing.
    /// KXP_PANEL_VISIBLE with a value other than 0 shows the panel where the user's mode allows it, and hides it
    /// otherwise: in KXP_USER_MODE and in KXP_RUN_MODE the device's setup decides, in any other mode it is shown. It
    /// takes the host's colours anew. [host main]
    virtual void SetState(std::uint32_t what, std::uint32_t value) = 0;

protected:
    ~IKXPDevicePanel() = default;
};
