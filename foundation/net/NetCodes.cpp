#include "NetCodes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

namespace {

// The text of code -n stands at n.
constexpr std::array<const char*, 32> kTexts = {
    "Success",
    "Unknow Error",
    "Unable to create socket",
    "Invalid IP adress",
    "Connection timeout",
    "Connection refused or aborted",
    "Host unreach",
    "Startup error",
    "Invalid parameter",
    "Host not connected",
    "Send failed",
    "Already connected",
    "Datagram receive buffer too small",
    "Send datagram failed",
    "Asynchronous operation setup failed",
    "Read failed",
    "Bind fo datagram failed",
    "Accept connection failed",
    "Address in use",
    "No more socket",
    "Socket not created",
    "Operation needs a datagram socket",
    "Register multicast group failed",
    "TCP No Delay option failed",
    "Operation timed out",
    "Set buffer size failed",
    "Connection in progress",
    "Too many connections",
    "The network subsystem has failed",
    "The connection was reset by the remote side",
    "The option requested for the connection is not allowed",
    "The connection has been aborted during the connection phase",
};
static_assert(kTexts.size() == static_cast<std::size_t>(-NetAborted) + 1);

struct CodeRow {
    NetOperation operation;
    SocketError error;
    std::int32_t code;
};

constexpr CodeRow kCodes[] = {
    {NetOperation::General, SocketError::Fault, NetBadParameter},
    {NetOperation::General, SocketError::NoBuffers, NetBadParameter},
    {NetOperation::General, SocketError::Invalid, NetBindFailed},
    {NetOperation::General, SocketError::Already, NetConnecting},
    {NetOperation::General, SocketError::NotSocket, NetNotCreated},
    {NetOperation::General, SocketError::FamilyNotSupported, NetBadAddress},
    {NetOperation::General, SocketError::AddressNotAvailable, NetBadAddress},
    {NetOperation::General, SocketError::AddressInUse, NetAddressInUse},
    {NetOperation::General, SocketError::NetworkDown, NetDown},
    {NetOperation::General, SocketError::NetworkUnreachable, NetHostUnreachable},
    {NetOperation::General, SocketError::HostUnreachable, NetHostUnreachable},
    {NetOperation::General, SocketError::ConnectionAborted, NetAborted},
    {NetOperation::General, SocketError::ConnectionReset, NetReset},
    {NetOperation::General, SocketError::IsConnected, NetAlreadyConnected},
    {NetOperation::General, SocketError::TimedOut, NetTimedOut},
    {NetOperation::General, SocketError::ConnectionRefused, NetRefused},
    {NetOperation::General, SocketError::NotInitialised, NetStartup},

    {NetOperation::Bind, SocketError::AddressNotAvailable, NetBadAddress},
    {NetOperation::Bind, SocketError::TimedOut, NetTimedOut},
    {NetOperation::Bind, SocketError::ConnectionRefused, NetRefused},
    {NetOperation::Bind, SocketError::HostUnreachable, NetHostUnreachable},

    {NetOperation::Option, SocketError::Fault, NetBadParameter},
    {NetOperation::Option, SocketError::Invalid, NetBadParameter},
    {NetOperation::Option, SocketError::NotSocket, NetNotCreated},
    {NetOperation::Option, SocketError::NoProtocolOption, NetOptionNotAllowed},
    {NetOperation::Option, SocketError::NetworkDown, NetDown},
    {NetOperation::Option, SocketError::NetworkReset, NetTimedOut},
    {NetOperation::Option, SocketError::NotConnected, NetReset},
    {NetOperation::Option, SocketError::NotInitialised, NetStartup},

    {NetOperation::KeepAlive, SocketError::WouldBlock, NetSetupFailed},
    {NetOperation::KeepAlive, SocketError::IoPending, NetOperationTimedOut},
    {NetOperation::KeepAlive, SocketError::Fault, NetBadParameter},
    {NetOperation::KeepAlive, SocketError::Invalid, NetBadParameter},
    {NetOperation::KeepAlive, SocketError::InProgress, NetConnecting},
    {NetOperation::KeepAlive, SocketError::NotSocket, NetNotCreated},
    {NetOperation::KeepAlive, SocketError::NoProtocolOption, NetOptionNotAllowed},
    {NetOperation::KeepAlive, SocketError::NotSupported, NetOptionNotAllowed},
    {NetOperation::KeepAlive, SocketError::NetworkDown, NetDown},
};

} // namespace

const char* NetErrorText(std::int32_t code) {
    return code > 0 || code < NetAborted ? "Undefined error" : kTexts[static_cast<std::size_t>(-code)];
}

std::int32_t NetCodeOf(NetOperation operation, SocketError error) {
    const auto* const row = std::find_if(std::begin(kCodes), std::end(kCodes), [=](const CodeRow& candidate) {
        return candidate.operation == operation && candidate.error == error;
    });
    return row == std::end(kCodes) ? NetUnknown : row->code;
}
