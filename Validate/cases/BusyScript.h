#pragma once

#include <string>

#include "ModuleHost.h"
#include "Trial.h"

/// @file
/// A device at work, for the cases that disturb it.

constexpr std::size_t kFunctionParameters = 10; ///< function, result and eight arguments

/// A setup with a script that publishes one variable of the device.
std::string SetupWith(const std::string& script, const std::string& variable);

/// A setup whose script writes the device's variable Level each millisecond and has the function Work, which gives its
/// argument back.
std::string BusySetup(const std::string& extra = {});

/// A setup whose script has a serial port and hears of changes, and whose Work asks the host for much.
std::string TalkingSetup();

/// Waits until the host has a text in a variable of the device. @return false when that does not happen.
bool WaitForText(HostedDevice& device, const std::string& variable, const std::string& text);

/// The command by which the host calls a function of the script; ends the case as skipped when the module has none.
std::int32_t FunctionCommand(const HostedDevice& device);

/// The parameters of that command for Work. @param argument what Work gives back.
std::vector<std::string> CallOfWork(const std::string& argument);

/// Loads the module or ends the case.
void LoadOrFail(ModuleHost& host, const Trial& trial);
/// Gives the device the setup and starts it; ends the case as skipped when it does not take it.
void StartBusy(HostedDevice& device, const std::string& setup = BusySetup());
/// The same for a case whose work are calls of functions; ends it as skipped when the device does not publish them, as
/// one without scripts. From then on a refused call is a fault.
void StartScript(HostedDevice& device, const std::string& setup = BusySetup(),
                 const std::vector<std::string>& functions = {"Work"});
/// StartScript, or a plain start of a device that runs no script, for a case that goes on without.
/// @return why it runs none; empty when it does.
std::string StartEither(HostedDevice& device, const std::string& setup = BusySetup());
/// Calls a function of the script that StartScript has found; throws a finding when the command is refused.
/// @param texts as CallOfWork.
void CallScript(HostedDevice& device, const std::vector<std::string>& texts, ContextTally& tally);
