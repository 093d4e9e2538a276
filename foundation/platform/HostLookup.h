#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The name of this machine; empty when the system does not tell.   [thread: any]
std::string SystemHostName();

/// Asks the system for the first IPv4 address of a name, in network byte order.
/// Blocks as long as the system's resolver does, many seconds when its servers are
/// silent, and cannot be interrupted: see HostResolution for a way to wait that can.
/// @return false when there is none.   [thread: any]
bool LookUpHost(const std::string& name, std::uint32_t& address);

/// The IPv4 addresses of the interfaces that are up, in network byte order and in the system's order.
/// @return false when the system does not tell.   [thread: any]
bool InterfaceAddresses(std::vector<std::uint32_t>& addresses);
