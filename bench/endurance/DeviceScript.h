#pragma once

#include <string>

#include "EchoPeers.h"

/// The script of a device of a long run: timers, sockets, what it asks of the host, and postponed answers.
/// @param isFaulty whether its function "Answer" throws one time in a hundred. The device then holds that command for
/// ten seconds.
std::string DeviceScript(const EchoPorts& ports, bool isFaulty);
