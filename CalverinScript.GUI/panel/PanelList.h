#pragma once

#include <cstdint>
#include <mutex>
#include <vector>

#include <QEvent>

class MCalverinScript_Device;
class TCalverinScript_ControlPanel;

/// News of a panel's device: whether it runs, and in which user mode of the host.
class RunStateEvent : public QEvent {
public:
    static constexpr auto kType = static_cast<QEvent::Type>(0x401);

    RunStateEvent(bool running, std::uint32_t mode)
        : QEvent(kType)
        , isRunning(running)
        , userMode(mode) {}

    const bool isRunning;
    const std::uint32_t userMode;
};

/// The panels of the process that have not been released.
class PanelList {
public:
    static PanelList& Get();

    /// [host main]
    void Add(TCalverinScript_ControlPanel& panel, const MCalverinScript_Device& device);
    void Remove(const TCalverinScript_ControlPanel& panel);
    /// The panels of a device let go of it.   [host main]
    void ForgetDevice(const MCalverinScript_Device& device);
    /// Every panel gives its window up. It stays its host's.   [host main]
    void CloseWindows();

    /// [any]
    bool Has(const MCalverinScript_Device& device) const;
    /// Sends news to all panels of a device.   [any]
    void Post(const MCalverinScript_Device& device, bool running, std::uint32_t userMode) const;

private:
    struct Row {
        TCalverinScript_ControlPanel* panel;
        const MCalverinScript_Device* device; ///< null once it has gone; only compared
    };

    std::vector<TCalverinScript_ControlPanel*> TakePanelsOf(const MCalverinScript_Device& device);

    mutable std::mutex m_lock; ///< guards m_rows, which the host's main thread writes; nobody is called under it
    std::vector<Row> m_rows;
};
