#pragma once

#include <atomic>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "MLockedList.h"
#include "ScriptRecords.h"
#include "SetupFormat.h"
#include "SetupMemory.h"

/// The setup of a device as its host keeps it: the script that Start runs, the user's choices, and the lists. What it
/// says is changed on the host's main thread alone; any thread may read it.
///
/// Whether the default commands and variables are removed has four voices: the setup, the script of the last
/// analysis, which outranks it, the open dialog in place of the setup, and the decision that is in force.
class StoredSetup {
public:
    StoredSetup() = default;
    StoredSetup(const StoredSetup&) = delete;
    StoredSetup& operator=(const StoredSetup&) = delete;

    /// A script's file, may be empty, and its text.   [host main]
    void SetScript(const QString& fileName, const QString& text);
    QString GetScriptFileName() const;
    QString GetScriptText() const;

    /// [host main]
    void SetChoices(const SetupChoices& choices);
    /// Whether the group granted to this device is registered at each load.   [host main]
    void SetRegisterAllUserGroups(bool enabled);
    /// The values that the script finds in its `Setup` before _mStart.   [host main]
    void SetSettings(const ScriptSettings& settings);
    SetupChoices GetChoices() const;

    /// Panel, settings and variables of another setup.   [host main]
    void TakePanelAndLists(const DeviceSetup& setup);
    /// Whether the control panel is shown in the host's user mode and in its run mode.   [host main]
    bool IsUserModeVisible() const { return m_userModeVisible; }
    bool IsRunModeVisible() const { return m_runModeVisible; }
    /// The setup as it is now, all but name and commands.   [host main]
    DeviceSetup Describe() const;

    // Lists with locks of their own
    MLockedList<MScriptSetting>& Settings() { return m_settings; }
    MLockedList<MScriptVariable>& Variables() { return m_variables; }
    std::vector<MScriptSetting> GetSettings() const { return m_settings.Snapshot(); }
    std::vector<MScriptVariable> GetVariables() const { return m_variables.Snapshot(); }

    // Whether the default commands and variables go
    /// The dialog's choice while it is open; nothing when it is closed.   [host main]
    void SetPendingRemoval(std::optional<bool> remove) { m_pendingRemoval = remove; }
    /// The script's own word at the last analysis.   [host main]
    void SetScriptsRemoval(std::optional<bool> remove) { m_scriptsRemoval = remove; }
    std::optional<bool> GetScriptsRemoval() const { return m_scriptsRemoval; }
    /// What an analysis goes by before the script has spoken.   [host main]
    bool GetRemovalForAnalysis() const { return m_pendingRemoval.value_or(GetChoices().removeDefaults); }
    /// The script's word, or else the choice.   [host main]
    bool DecideRemoval(bool choice) const { return m_scriptsRemoval.value_or(choice); }
    void ApplyRemoval(bool remove) { m_appliedRemoval = remove; }
    /// The decision in force.   [any]
    bool IsRemovalApplied() const { return m_appliedRemoval; }

    // [host main]
    void SetLoaded() { m_isLoaded = true; }
    /// Whether a setup was ever read or accepted.
    bool IsLoaded() const { return m_isLoaded; }

    /// The definition that the host has, or will ask for; empty means that it has to be built.
    void SetDefinition(const std::string& definition) { m_definition = definition; }
    const std::string& GetDefinition() const { return m_definition; }
    /// The device's number in its module, for the definition; 0 until the module has given it one.
    void SetDeviceNumber(std::uint32_t number) { m_deviceNumber = number; }
    /// [any]: devices may be walked while one is made.
    std::uint32_t GetDeviceNumber() const { return m_deviceNumber; }
    /// How the user left the dialog.
    SetupMemory& Memory() { return m_memory; }

private:
    mutable std::mutex m_lock;
    QString m_scriptFileName; ///< under m_lock, as are the next two
    QString m_scriptText;
    SetupChoices m_choices{true, false, false, true}; ///< of a new device

    MLockedList<MScriptSetting> m_settings;
    MLockedList<MScriptVariable> m_variables; ///< as known to the host
    std::atomic<bool> m_appliedRemoval{false};
    std::atomic<std::uint32_t> m_deviceNumber{0};

    bool m_userModeVisible = true; ///< host main, as is all that follows
    bool m_runModeVisible = true;
    bool m_isLoaded = false;
    std::optional<bool> m_scriptsRemoval;
    std::optional<bool> m_pendingRemoval;
    std::string m_definition;
    SetupMemory m_memory;
};
