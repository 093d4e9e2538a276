#include "SystemSocket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <utility>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

struct OptionRow {
    SocketOption option;
    int level;
    int name;
};

constexpr std::array<OptionRow, 9> kOptions = {{
    {SocketOption::NoDelay, IPPROTO_TCP, TCP_NODELAY},
    {SocketOption::SendBuffer, SOL_SOCKET, SO_SNDBUF},
    {SocketOption::ReceiveBuffer, SOL_SOCKET, SO_RCVBUF},
    {SocketOption::ReuseAddress, SOL_SOCKET, SO_REUSEADDR},
    {SocketOption::Broadcast, SOL_SOCKET, SO_BROADCAST},
    {SocketOption::MulticastLoop, IPPROTO_IP, IP_MULTICAST_LOOP},
    {SocketOption::MulticastScope, IPPROTO_IP, IP_MULTICAST_TTL},
    {SocketOption::MulticastInterface, IPPROTO_IP, IP_MULTICAST_IF},
    {SocketOption::UnicastInterface, IPPROTO_IP, IP_UNICAST_IF},
}};
static_assert(kOptions.size() == static_cast<std::size_t>(SocketOption::UnicastInterface) + 1);

// An IPv4 packet of 65535 bytes less its own header and that of UDP (RFC 768, RFC 791).
constexpr std::uint32_t kLargestDatagram = 65535 - 20 - 8;

int Fd(SocketHandle handle) {
    return static_cast<int>(handle);
}

SocketError LastError() {
    return SocketErrorFromSystem(errno);
}

SocketError Check(int result) {
    return result == 0 ? SocketError::None : LastError();
}

template <class Value>
SocketError Set(SocketHandle handle, int level, int name, const Value& value) {
    return Check(setsockopt(Fd(handle), level, name, &value, sizeof value));
}

sockaddr_in ToSystem(const SocketAddress& address) {
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_addr.s_addr = address.address;
    result.sin_port = address.port;
    return result;
}

template <class Ask>
SocketError AskAddress(Ask ask, SocketHandle handle, SocketAddress& address) {
    sockaddr_in answer{};
    socklen_t size = sizeof answer;
    const SocketError error = Check(ask(Fd(handle), reinterpret_cast<sockaddr*>(&answer), &size));
    if (error == SocketError::None)
        address = {answer.sin_addr.s_addr, answer.sin_port};
    return error;
}

template <class Call>
SocketTransfer Transfer(Call call) {
    ssize_t count = 0;
    do
        count = call();
    while (count < 0 && errno == EINTR);
    return count < 0 ? SocketTransfer{0, LastError()}
                     : SocketTransfer{static_cast<std::size_t>(count), SocketError::None};
}

int WholeSeconds(std::uint32_t milliseconds) {
    return static_cast<int>(std::max<std::uint32_t>(1, milliseconds / 1000 + (milliseconds % 1000 != 0 ? 1 : 0)));
}

} // namespace

SystemSocket::SystemSocket(SocketHandle handle)
    : m_handle(handle) {}

SystemSocket::~SystemSocket() {
    Close();
}

SystemSocket::SystemSocket(SystemSocket&& other) noexcept
    : m_handle(std::exchange(other.m_handle, kNoSocket)) {}

SystemSocket& SystemSocket::operator=(SystemSocket&& other) noexcept {
    std::swap(m_handle, other.m_handle);
    return *this;
}

SocketError SystemSocket::OpenStream() {
    return Open(SOCK_STREAM);
}

// This system hands a datagram socket what comes for every group that anybody on the machine has joined, unless it is
// told not to.
SocketError SystemSocket::OpenDatagram() {
    const SocketError error = Open(SOCK_DGRAM);
    return error == SocketError::None ? Set(m_handle, IPPROTO_IP, IP_MULTICAST_ALL, int{0}) : error;
}

SocketError SystemSocket::Open(int type) {
    Close();
    m_handle = socket(AF_INET, type | SOCK_CLOEXEC, 0);
    return IsOpen() ? SocketError::None : LastError();
}

void SystemSocket::Close() {
    if (IsOpen())
        close(Fd(std::exchange(m_handle, kNoSocket)));
}

SocketError SystemSocket::SetOption(SocketOption option, std::int32_t value) {
    const OptionRow& row = kOptions.at(static_cast<std::size_t>(option));
    if (option == SocketOption::MulticastInterface)
        return Set(m_handle, row.level, row.name, in_addr{static_cast<in_addr_t>(value)});
    if (option == SocketOption::UnicastInterface)
        return Set(m_handle, row.level, row.name, htonl(static_cast<std::uint32_t>(value)));
    return Set(m_handle, row.level, row.name, int{value});
}

SocketError SystemSocket::SetKeepAlive(bool on, std::uint32_t timeMs, std::uint32_t intervalMs) {
    SocketError error = Set(m_handle, SOL_SOCKET, SO_KEEPALIVE, int{static_cast<int>(on)});
    if (on && error == SocketError::None)
        error = Set(m_handle, IPPROTO_TCP, TCP_KEEPIDLE, WholeSeconds(timeMs));
    if (on && error == SocketError::None)
        error = Set(m_handle, IPPROTO_TCP, TCP_KEEPINTVL, WholeSeconds(intervalMs));
    return error;
}

SocketError SystemSocket::JoinGroup(std::uint32_t group, std::uint32_t interfaceAddress) {
    return Set(m_handle, IPPROTO_IP, IP_ADD_MEMBERSHIP, ip_mreq{{group}, {interfaceAddress}});
}

SocketError SystemSocket::Bind(const SocketAddress& address) {
    const sockaddr_in target = ToSystem(address);
    return Check(bind(Fd(m_handle), reinterpret_cast<const sockaddr*>(&target), sizeof target));
}

SocketError SystemSocket::GetLocalAddress(SocketAddress& address) const {
    return AskAddress(getsockname, m_handle, address);
}

SocketError SystemSocket::GetPeerAddress(SocketAddress& address) const {
    return AskAddress(getpeername, m_handle, address);
}

// The socket itself blocks, so that SendTo waits for room; only a connect must not, and only while it is called.
SocketError SystemSocket::Connect(const SocketAddress& address) {
    int nonBlocking = 1;
    ioctl(Fd(m_handle), FIONBIO, &nonBlocking);
    return FinishConnect(address);
}

// A second connect call tells the result, and, unlike SO_ERROR, makes the socket ready for another attempt.
SocketError SystemSocket::FinishConnect(const SocketAddress& address) {
    const sockaddr_in target = ToSystem(address);
    SocketError error = Check(connect(Fd(m_handle), reinterpret_cast<const sockaddr*>(&target), sizeof target));
    if (error == SocketError::Already || error == SocketError::Interrupted)
        return SocketError::IoPending;
    if (error != SocketError::None && error != SocketError::IsConnected)
        return error;
    SocketAddress local;
    if (!(GetLocalAddress(local) == SocketError::None && local == address))
        return SocketError::None;
    Dissolve();
    return SocketError::ConnectionRefused;
}

void SystemSocket::Dissolve() {
    sockaddr nobody{};
    nobody.sa_family = AF_UNSPEC;
    static_cast<void>(connect(Fd(m_handle), &nobody, sizeof nobody));
}

SocketError SystemSocket::GetPendingCount(std::uint32_t& count) const {
    int pending = 0;
    const SocketError error = Check(ioctl(Fd(m_handle), FIONREAD, &pending));
    if (error == SocketError::None)
        count = static_cast<std::uint32_t>(pending);
    return error;
}

SocketTransfer SystemSocket::Receive(char* buffer, std::size_t size) {
    return Transfer([&] { return recv(Fd(m_handle), buffer, size, MSG_DONTWAIT); });
}

SocketTransfer SystemSocket::Send(const char* data, std::size_t size) {
    return Transfer([&] { return send(Fd(m_handle), data, size, MSG_DONTWAIT | MSG_NOSIGNAL); });
}

SocketError SystemSocket::SendTo(const char* data, std::size_t size, const SocketAddress& to) {
    const sockaddr_in target = ToSystem(to);
    const auto* const address = reinterpret_cast<const sockaddr*>(&target);
    return Transfer([&] { return sendto(Fd(m_handle), data, size, MSG_NOSIGNAL, address, sizeof target); }).error;
}

std::uint32_t SystemSocket::GetMaxMessageSize() {
    return kLargestDatagram;
}

SocketError SystemSocket::ShutDownSending() {
    return Check(shutdown(Fd(m_handle), SHUT_WR));
}

void SystemSocket::ShutDown() {
    shutdown(Fd(m_handle), SHUT_RDWR);
}
