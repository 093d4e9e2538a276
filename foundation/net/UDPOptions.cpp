#include <algorithm>
#include <string_view>
#include <vector>

#include "HostLookup.h"
#include "MUDPSocket.h"

// Sending, and the options that make the socket when they need it.

std::int32_t MUDPSocket::SendTo(const char* data, std::int32_t length, const char* address, std::uint16_t port) {
    const std::uint32_t cancelCount = m_resolver.GetCancelCount();
    std::int32_t code = NetSuccess;
    const SocketPtr socket = MakeSocket(code);
    if (!socket)
        return code;
    if (length < 0 || (data == nullptr && length > 0))
        return NetSendDatagramFailed;
    SocketAddress to{kBroadcastAddress, NetworkPort(port)};
    if (address == nullptr || std::string_view(address) == "255.255.255.255")
        AllowBroadcast(*socket);
    else if (m_resolver.Resolve(address, cancelCount, to.address) != HostResolver::Outcome::Found)
        return NetBadAddress;
    const SocketError error = socket->SendTo(data, static_cast<std::size_t>(length), to);
    return error == SocketError::None ? NetSuccess : NetSendDatagramFailed;
}

void MUDPSocket::AllowBroadcast(SystemSocket& socket) {
    const std::lock_guard<std::mutex> guard(m_state);
    if (!m_broadcastEnabled || &socket != m_socket.get())
        m_broadcastEnabled = socket.SetOption(SocketOption::Broadcast, 1) == SocketError::None;
}

// The time to live has no failure table of its own: everything is unknown.
std::int32_t MUDPSocket::SetMulticastScope(std::int32_t timeToLive) {
    const std::int32_t code = SetOption(SocketOption::MulticastScope, timeToLive);
    return code == NetSuccess || code == NetNoSocket ? code : NetUnknown;
}

std::int32_t MUDPSocket::SetMulticastLoopbackOption(bool on) {
    return SetOption(SocketOption::MulticastLoop, static_cast<std::int32_t>(on));
}

std::int32_t MUDPSocket::SetMulticastInterface(const char* address) {
    std::uint32_t value = 0;
    if (address != nullptr && !ParseDottedAddress(address, value))
        value = kBroadcastAddress; // which no interface has
    return SetOption(SocketOption::MulticastInterface, static_cast<std::int32_t>(value));
}

std::int32_t MUDPSocket::SetUnicastInterface(std::uint32_t index) {
    return SetOption(SocketOption::UnicastInterface, static_cast<std::int32_t>(index));
}

std::int32_t MUDPSocket::SetOption(SocketOption option, std::int32_t value) {
    std::int32_t code = NetSuccess;
    const SocketPtr socket = MakeSocket(code);
    if (!socket)
        return code;
    const SocketError error = socket->SetOption(option, value);
    return error == SocketError::None ? NetSuccess : NetCodeOf(NetOperation::Option, error);
}

std::int32_t MUDPSocket::GetInterfaceAddresses(InterfaceAddressList& list) {
    std::int32_t code = NetSuccess;
    if (!MakeSocket(code))
        return code;
    std::vector<std::uint32_t> found;
    if (!InterfaceAddresses(found))
        return NetOptionNotAllowed;
    list.count = std::min({list.count, InterfaceAddressList::kMost, static_cast<std::int32_t>(found.size())});
    list.count = std::max(list.count, 0);
    for (std::int32_t i = 0; i < list.count; ++i)
        DottedText(found[static_cast<std::size_t>(i)]).copy(list.addresses.at(static_cast<std::size_t>(i)).data(), 23);
    return NetSuccess;
}
