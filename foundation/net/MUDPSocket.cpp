#include "MUDPSocket.h"

#include <algorithm>

namespace {

constexpr std::uint32_t kReceiveBuffer = 4096;

} // namespace

MUDPSocket::MUDPSocket()
    : m_receiveBufferSize(kReceiveBuffer) {}

MUDPSocket::~MUDPSocket() {
    Close();
    StopReceiving();
    m_handlers.Clear();
}

void MUDPSocket::AddHandler(IUDPSocketHandler* handler) {
    m_handlers.Add(handler);
}

void MUDPSocket::RemoveHandler(IUDPSocketHandler* handler) {
    m_handlers.Remove(handler);
}

void MUDPSocket::SetAddress(const char* address) {
    const std::lock_guard<std::mutex> guard(m_state);
    m_address = address != nullptr ? address : "";
}

std::string MUDPSocket::GetAddress() {
    const std::lock_guard<std::mutex> guard(m_state);
    return m_address;
}

void MUDPSocket::SetPort(std::uint16_t port) {
    m_port = port;
}

std::uint16_t MUDPSocket::GetPort() {
    return m_port;
}

void MUDPSocket::SetReceiveBufferSize(std::uint32_t bytes) {
    const std::uint32_t most = GetMaxMessageSize();
    m_receiveBufferSize = most == 0 ? bytes : std::min(bytes, most);
}

std::uint32_t MUDPSocket::GetReceiveBufferSize() {
    return m_receiveBufferSize;
}

std::uint32_t MUDPSocket::GetMaxMessageSize() {
    return CurrentSocket() ? SystemSocket::GetMaxMessageSize() : 0;
}

void MUDPSocket::SetExclusivePort(bool on) {
    m_exclusivePort = on;
}

bool MUDPSocket::GetExclusivePort() {
    return m_exclusivePort;
}

void MUDPSocket::SetMulticastLoopback(bool on) {
    m_multicastLoopback = on;
}

bool MUDPSocket::GetMulticastLoopback() {
    return m_multicastLoopback;
}

MUDPSocket::SocketPtr MUDPSocket::CurrentSocket() const {
    const std::lock_guard<std::mutex> guard(m_state);
    return m_socket;
}

MUDPSocket::SocketPtr MUDPSocket::MakeSocket(std::int32_t& code) {
    code = MWSAData::Start();
    if (code != NetSuccess)
        return nullptr;
    const std::lock_guard<std::mutex> guard(m_state);
    if (m_socket)
        return m_socket;
    auto socket = std::make_shared<SystemSocket>();
    if (socket->OpenDatagram() == SocketError::None)
        m_socket = std::move(socket);
    else
        code = NetNoSocket;
    return m_socket;
}

std::int32_t MUDPSocket::Bind(bool useAddressList, const char* const* addressList, std::int32_t addressCount) {
    StopReceiving();
    CloseSocket();
    std::int32_t code = NetSuccess;
    const SocketPtr socket = MakeSocket(code);
    if (!socket)
        return code;
    const bool useList = useAddressList && addressList != nullptr && addressCount > 0;
    code = BindSocket(*socket, useList, addressList, addressCount);
    if (code == NetSuccess)
        code = JoinGroup(*socket, useList, addressList, addressCount);
    if (code == NetSuccess && !StartReceiving())
        code = NetSetupFailed;
    if (code != NetSuccess)
        CloseSocket();
    return code;
}

std::int32_t MUDPSocket::BindSocket(SystemSocket& socket, bool useList, const char* const* list, std::int32_t count) {
    SocketAddress address;
    if (useList && count == 1 && !FindBindAddress(list[0], address.address))
        return NetBadParameter;
    if (!m_exclusivePort)
        socket.SetOption(SocketOption::ReuseAddress, 1);
    address.port = NetworkPort(m_port);
    const SocketError error = socket.Bind(address);
    if (error != SocketError::None)
        return NetCodeOf(NetOperation::Bind, error);
    SocketAddress bound;
    if (m_port == 0 && socket.GetLocalAddress(bound) == SocketError::None)
        m_port = NetworkPort(bound.port);
    socket.SetOption(SocketOption::MulticastLoop, static_cast<std::int32_t>(m_multicastLoopback));
    return NetSuccess;
}

// A null entry stands for the machine's own name; without a name
// for the loopback address, whose trailing blank does not count.
bool MUDPSocket::FindBindAddress(const char* text, std::uint32_t& address) {
    if (text != nullptr)
        return ParseDottedAddress(text, address);
    const std::string name = GetHostName();
    if (name.empty())
        return ParseDottedAddress("127.0.0.1 ", address);
    return m_resolver.Resolve(name, m_resolver.GetCancelCount(), address) == HostResolver::Outcome::Found;
}

std::int32_t MUDPSocket::JoinGroup(SystemSocket& socket, bool useList, const char* const* list, std::int32_t count) {
    std::uint32_t group = 0;
    if (!ParseDottedAddress(GetAddress().c_str(), group) || !IsMulticastAddress(group))
        return NetSuccess;
    if (!useList)
        return socket.JoinGroup(group, 0) == SocketError::None ? NetSuccess : NetJoinFailed;
    for (std::int32_t i = 0; i < count; ++i) {
        std::uint32_t interfaceAddress = 0;
        if (!FindBindAddress(list[i], interfaceAddress) ||
            socket.JoinGroup(group, interfaceAddress) != SocketError::None)
            return NetJoinFailed;
    }
    return NetSuccess;
}

bool MUDPSocket::StartReceiving() {
    return m_wake.Open() && MThread::Start(true);
}

void MUDPSocket::StopReceiving() {
    MThread::Stop();
    m_wake.Set();
    MThread::Wait();
}

std::int32_t MUDPSocket::Close() {
    if (!IsLibraryStarted())
        return NetStartup;
    StopReceiving();
    CloseSocket();
    return MWSAData::Stop();
}

void MUDPSocket::CloseSocket() {
    SocketPtr socket;
    {
        const std::lock_guard<std::mutex> guard(m_state);
        socket = std::move(m_socket);
        m_socket = nullptr;
        m_broadcastEnabled = false;
    }
    m_resolver.Cancel();
    if (socket)
        socket->ShutDown(); // frees a SendTo that waits for room
}
