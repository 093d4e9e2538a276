#pragma once

#include <cstdint>
#include <string>

/// An IPv4 address and a port, both as they travel: in network byte order.
struct SocketAddress {
    std::uint32_t address = 0; ///< 0 stands for any address
    std::uint16_t port = 0;

    bool operator==(const SocketAddress& other) const { return address == other.address && port == other.port; }
};

/// 255.255.255.255, in network byte order, which is the same in any.
inline constexpr std::uint32_t kBroadcastAddress = 0xFFFFFFFF;

/// A port from and to network byte order; the same operation both ways.   [thread: any]
std::uint16_t NetworkPort(std::uint16_t port);

/// Reads a dotted address ("192.168.1.5", also the old short forms such as "127.1"; blanks at the end do not count).
/// @return false, and address unchanged, for anything else.   [thread: any]
bool ParseDottedAddress(const char* text, std::uint32_t& address);

/// The dotted text of an address in network byte order.   [thread: any]
std::string DottedText(std::uint32_t address);

/// True for 224.0.0.0 to 239.255.255.255.   [thread: any]
bool IsMulticastAddress(std::uint32_t address);
