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
