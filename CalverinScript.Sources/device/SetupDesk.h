#pragma once

#include <string>

#include <QString>

#include "DeviceDefinition.h"
#include "KXPTypes.h"
#include "ScriptRecords.h"
#include "SetupFormat.h"

class QScriptEngine;
class HostDoor;
class HostValues;
class IModuleServices;
class IScriptReports;
class ResourceRoom;
class ScriptAnalysis;
class StoredSetup;
class UserCommands;
struct HostServices;
struct ScriptSet;

/// What the setup of a device needs of the device itself.   [all: host main]
class ISetupOwner {
public:
    /// The device's name in the host's 8-bit text.
    virtual std::string GetSetupName() = 0;
    virtual void SetSetupName(const char* name) = 0;
    /// Whether the device is the module's first, which stores the module's commands too.
    virtual bool IsFirstDevice() const = 0;
    /// The commands of all devices of the module.
    virtual ScriptCommands CommandsOfAllDevices() const = 0;
    /// A script is to be shown as the device's.
    virtual void ShowScript(const QString& fileName, const QString& text) = 0;

protected:
    ~ISetupOwner() = default;
};

/// Where the setup of one device is read, given out and changed, by its host and by its dialog. What is taken over
/// becomes the device's once the host has taken the definition that follows from it.
/// [host main, where nothing else is said]
///
/// A dialog calls Begin, then makes its own analyses, and ends with Accept or Cancel.
///
/// The host may release the device from inside whatever it is asked here. The device lives on to the end of the call, and
/// the host is asked nothing more.
class SetupDesk {
public:
    /// What it works with, all borrowed for its life.
    struct Parts {
        IModuleServices* module; ///< may be null
        const HostServices& services;
        HostDoor& door; ///< closed from within a call when the host lets the device go meanwhile
        HostValues& values;
        const ScriptSet& running; ///< what the running script publishes
        StoredSetup& setup;
        UserCommands& commands;
        ScriptAnalysis& analysis;
        ResourceRoom& resources;
        ISetupOwner& owner;
        IScriptReports& reports;
    };

    explicit SetupDesk(const Parts& parts)
        : m_parts(parts)
        , m_definition(parts.module, parts.values, parts.running, parts.setup) {}
    SetupDesk(const SetupDesk&) = delete;
    SetupDesk& operator=(const SetupDesk&) = delete;

    /// As IKXPDevice::GetSetup. What SetSetup would refuse is not given out, so that the host keeps the text that it has.
    KXPCode Print(char** out);
    /// As IKXPDevice::SetSetup.
    KXPCode Take(const char* text);
    /// As IKXPDevice::GetDefinition.
    const char* GetDefinition();
    /// As DeviceDefinition::BindDefaultsUnlessBound.   [any host thread]
    void BindDefaultsUnlessBound() { m_definition.BindDefaultsUnlessBound(); }

    /// Before the dialog fills its form.
    void Begin();
    /// The setup as the device has it now, all but the commands.
    DeviceSetup Describe();
    /// Takes over what the dialog holds. The script has to have been analysed before.
    /// @param setup its commands and module commands are not read. @param scriptFile path of the script's file, may be
    /// empty. @return 0, 771 the commands have changed, 13 the host refused and the device is as it was.
    KXPCode Accept(const DeviceSetup& setup, const QString& scriptFile);
    /// The dialog was left without: the resources are those of the device's own settings again. @return 13.
    KXPCode Cancel();
    /// Lets go of the resources that the device has taken, and takes those that the settings name. A dialog calls it
    /// when its user has chosen one.
    void ResolveResources(const ScriptSettings& settings);

private:
    void TakeStored(const DeviceSetup& setup);
    void TakeStoredScript(const SetupScript& script);
    void TakeAccepted(const DeviceSetup& setup, const SetupScript& script, const QString& scriptFile);
    void TakeScript(const QString& fileName, const QString& text);
    void AnalyseStored();
    void AnalyseAgain(QScriptEngine& engine);
    std::string PrintWith(DeviceSetup setup, const ScriptCommands& commands) const;
    bool CanBeStored(const std::string& text);
    void MergeLegacy();
    void ResolveChangedResources();

    const Parts m_parts;
    DeviceDefinition m_definition;
};
