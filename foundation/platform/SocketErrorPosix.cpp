#include "SocketError.h"

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace {

struct ErrorRow {
    int systemError;
    SocketError error;
};

constexpr ErrorRow kErrors[] = {
    {0, SocketError::None},
    {EINTR, SocketError::Interrupted},
    {EACCES, SocketError::Access},
    {EPERM, SocketError::Access},
    {EFAULT, SocketError::Fault},
    {EINVAL, SocketError::Invalid},
    {EDOM, SocketError::Invalid},
    {EMFILE, SocketError::TooManyOpen},
    {ENFILE, SocketError::TooManyOpen},
    {EAGAIN, SocketError::WouldBlock},
    {EINPROGRESS, SocketError::IoPending}, // a connect that goes on
    {EALREADY, SocketError::Already},
    {EBADF, SocketError::NotSocket},
    {ENOTSOCK, SocketError::NotSocket},
    {EMSGSIZE, SocketError::MessageTooLong},
    {ENOPROTOOPT, SocketError::NoProtocolOption},
    {EOPNOTSUPP, SocketError::NotSupported},
    {EAFNOSUPPORT, SocketError::FamilyNotSupported},
    {EADDRINUSE, SocketError::AddressInUse},
    {EADDRNOTAVAIL, SocketError::AddressNotAvailable},
    {ENODEV, SocketError::AddressNotAvailable}, // no interface has the address
    {ENETDOWN, SocketError::NetworkDown},
    {ENETUNREACH, SocketError::NetworkUnreachable},
    {ENETRESET, SocketError::NetworkReset},
    {ECONNABORTED, SocketError::ConnectionAborted},
    {ECONNRESET, SocketError::ConnectionReset},
    {ENOBUFS, SocketError::NoBuffers},
    {ENOMEM, SocketError::NoBuffers},
    {EISCONN, SocketError::IsConnected},
    {ENOTCONN, SocketError::NotConnected},
    {EPIPE, SocketError::ShutDown},
    {ETIMEDOUT, SocketError::TimedOut},
    {ECONNREFUSED, SocketError::ConnectionRefused},
    {EHOSTUNREACH, SocketError::HostUnreachable},
    {EHOSTDOWN, SocketError::HostUnreachable},
};
static_assert(EAGAIN == EWOULDBLOCK);

} // namespace

SocketError SocketErrorFromSystem(int systemError) {
    const auto* const row = std::find_if(std::begin(kErrors), std::end(kErrors), [=](const ErrorRow& candidate) {
        return candidate.systemError == systemError;
    });
    return row == std::end(kErrors) ? SocketError::Other : row->error;
}
