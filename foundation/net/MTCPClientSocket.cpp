#include "MTCPClientSocket.h"

namespace {

constexpr std::size_t kLeastReceiveBuffer = 4096;
constexpr std::int32_t kSocketBuffer = 131072;

} // namespace

MTCPClientSocket::MTCPClientSocket()
    : m_receiveBuffer(new char[kLeastReceiveBuffer])
    , m_receiveBufferSize(kLeastReceiveBuffer)
    , m_socketBufferSize(kSocketBuffer) {}

MTCPClientSocket::~MTCPClientSocket() {
    StopSocket(true);
    m_handlers.Clear();
}

void MTCPClientSocket::AddHandler(ITCPClientSocketHandler* handler) {
    m_handlers.Add(handler);
}

void MTCPClientSocket::RemoveHandler(ITCPClientSocketHandler* handler) {
    m_handlers.Remove(handler);
}

void MTCPClientSocket::TellError(std::int32_t code) {
    m_handlers.Tell([=](ITCPClientSocketHandler& handler) { handler.OnError(code, this); });
}

bool MTCPClientSocket::EveryHandlerAgrees() {
    bool agreed = true;
    m_handlers.Tell([&](ITCPClientSocketHandler& handler) { agreed = agreed && handler.OnQueryConnect(this); });
    return agreed;
}

MTCPClientSocket::ConnectionPtr MTCPClientSocket::CurrentConnection() const {
    const std::lock_guard<std::mutex> guard(m_state);
    return m_connection;
}

MTCPClientSocket::ConnectionPtr MTCPClientSocket::StandingConnection() const {
    const std::lock_guard<std::mutex> guard(m_state);
    return m_connected ? m_connection : nullptr;
}

void MTCPClientSocket::SetAddress(const char* host) {
    {
        const std::lock_guard<std::mutex> guard(m_state);
        if (m_host == (host != nullptr ? host : ""))
            return;
        m_host = host != nullptr ? host : "";
    }
    Reconnect();
}

std::string MTCPClientSocket::GetAddress() {
    const std::lock_guard<std::mutex> guard(m_state);
    return m_host;
}

void MTCPClientSocket::SetPort(std::int32_t port) {
    {
        const std::lock_guard<std::mutex> guard(m_state);
        if (m_port == port)
            return;
        m_port = port;
    }
    Reconnect();
}

std::int32_t MTCPClientSocket::GetPort() {
    const std::lock_guard<std::mutex> guard(m_state);
    return m_port;
}

std::int32_t MTCPClientSocket::SetNoDelay(bool on) {
    m_noDelay = on;
    const ConnectionPtr connection = CurrentConnection();
    if (!connection)
        return NetNotCreated;
    return connection->socket.SetOption(SocketOption::NoDelay, static_cast<std::int32_t>(on)) == SocketError::None
               ? NetSuccess
               : NetNoDelayFailed;
}

bool MTCPClientSocket::GetNoDelay() {
    return m_noDelay;
}

void MTCPClientSocket::SetAutoReconnect(bool on) {
    m_autoReconnect = on;
    m_wake.Set();
}

bool MTCPClientSocket::GetAutoReconnect() {
    return m_autoReconnect;
}

void MTCPClientSocket::SetStopOnClose(bool on) {
    m_stopOnClose = on;
}

bool MTCPClientSocket::GetStopOnClose() {
    return m_stopOnClose;
}

std::int32_t MTCPClientSocket::GetSocketBufferSize() {
    return m_socketBufferSize;
}

void MTCPClientSocket::SetSocketBufferSize(std::int32_t bytes) {
    m_socketBufferSize = bytes;
}

std::int32_t MTCPClientSocket::SetKeepAlive(bool on, std::uint32_t timeMs, std::uint32_t intervalMs) {
    ConnectionPtr connection;
    {
        const std::lock_guard<std::mutex> guard(m_state);
        m_keepAlive = {on, timeMs, intervalMs};
        connection = m_connection;
    }
    if (!connection)
        return NetNotCreated;
    const SocketError error = connection->socket.SetKeepAlive(on, timeMs, intervalMs);
    return error == SocketError::None ? NetSuccess : NetCodeOf(NetOperation::KeepAlive, error);
}

bool MTCPClientSocket::IsConnected() {
    return StandingConnection() != nullptr;
}

std::int32_t MTCPClientSocket::Send(const char* data, std::int32_t length) {
    if (data == nullptr || length < 0)
        return NetBadParameter;
    if (!IsLibraryStarted())
        return NetStartup;
    const ConnectionPtr connection = StandingConnection();
    if (!connection)
        return NetNotConnected;
    const auto size = static_cast<std::size_t>(length);
    if (OnOwnThread())
        return connection->outgoing.SendWithoutWaiting(connection->socket, data, size) ? NetSuccess : NetSendFailed;
    const bool sent = connection->outgoing.Send(connection->socket, data, size);
    if (connection->outgoing.HasUnsent())
        m_wake.Set(); // what handlers left behind meanwhile is the thread's to send
    return sent ? NetSuccess : NetSendFailed;
}

void MTCPClientSocket::SetReading(bool on) {
    m_reading = on;
    if (on)
        m_wake.Set();
}

std::int32_t MTCPClientSocket::ShutdownSend() {
    if (!IsLibraryStarted())
        return NetStartup;
    if (!IsConnected())
        return NetNotConnected;
    const ConnectionPtr connection = CurrentConnection();
    if (!connection)
        return NetNotCreated;
    return connection->socket.ShutDownSending() == SocketError::None ? NetSuccess : NetUnknown;
}
