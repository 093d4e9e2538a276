#pragma once

#include <cstdint>
#include <string>

#include <QString>

#include "MLockedList.h"
#include "ScriptRecords.h"

class IObjectParams;

/// The commands that the script of one device adds, with the numbers under which the host keeps them. Names that
/// several devices use share their numbers through the module.   [host main, where nothing else is said]
class UserCommands {
public:
    UserCommands() = default;
    UserCommands(const UserCommands&) = delete;
    UserCommands& operator=(const UserCommands&) = delete;

    ScriptCommands Get() const { return m_commands.Snapshot(); }
    void Set(const ScriptCommands& commands);
    /// @return false when there is none of that number.   [any]
    bool Find(std::int32_t id, MScriptCommand& found);

    /// Gives the functions of an analysis their numbers. @param keepOld keeps those that they have.
    static void AssignIds(MLockedList<MScriptCommand>& functions, bool keepOld);
    /// The functions of an analysis become the commands of the device, and those of the module that they share.
    void Commit(MLockedList<MScriptCommand>& functions);
    /// Whether these functions are other commands than the device has.
    bool DifferFrom(const ScriptCommands& functions) const;

    /// How a stored command relates to these. @param params with them the command is looked up by the function that
    /// they name, without by its number. @return 0 gone, 1 other parameters or none to compare, 2 valid.
    int Validate(std::int32_t id, IObjectParams* params);
    /// A stored command of another version as this device would store it. One that the device does not have is noted
    /// as one of an older setup when the module knows it.
    /// @param deviceName the command of another device is left alone. @return null when there is nothing to change.
    char* Update(const char* commandXml, const std::string& deviceName);

    /// Commands that the setups of the module's devices share, as the first of them stores them.
    static ScriptCommands OfModule();
    static void AddToModule(const ScriptCommands& commands);
    /// Whether older setups have left commands that the module has not taken yet.
    static bool HasLegacy();
    /// The module takes them. @param inUse the commands of all devices.
    static void MergeLegacy(const ScriptCommands& inUse);

private:
    bool FindNamed(const QString& name, MScriptCommand& found);

    MLockedList<MScriptCommand> m_commands;
};
