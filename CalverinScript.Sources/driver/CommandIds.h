#pragma once

#include "ScriptRecords.h"

/// @file
/// Numbers of user commands. They mean the same for all devices of the module and stay
/// what they are while scripts are edited, since the commands that a show has stored
/// name them. All functions take time in proportion to their lists. Pure functions.

/// Whether a number may be a user command's: from 4, and not the device's own 10000.
bool IsUserCommandId(std::int32_t id);

/// Whether two commands ask for the same: as many parameters, one by one of the same name, direction and type.
bool HaveSameParams(const MScriptCommand& left, const MScriptCommand& right);

/// Numbers the commands that a script defines. One that is known by name, with the same parameters, has the known
/// number; with other parameters it has that number too or, with keepOld, a new one and the known one as its previous.
/// What is not known gets a new number, the lowest that is free. Of several that are known by one name the one with the
/// same parameters counts.
void AssignCommandIds(const ScriptCommands& known, ScriptCommands& fresh, bool keepOld);

/// Makes fresh the commands of a device: of each name the first stays; the result has no previous numbers. Each also
/// goes into the module's commands, in the place of the one that has its number.
/// @return the device's commands.
ScriptCommands CommitCommands(ScriptCommands& fresh, ScriptCommands& moduleCommands);

/// Adds those commands of older setups that neither a device nor the module has, by name and number, to the module's,
/// so that their numbers are not given to others. One whose number is taken is left out.
/// @param inUse the commands of all devices.
void MergeLegacyCommands(const ScriptCommands& inUse, const ScriptCommands& legacy, ScriptCommands& moduleCommands);
