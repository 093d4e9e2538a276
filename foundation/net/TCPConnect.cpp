#include "MTCPClientSocket.h"

// Connecting and closing. Lock order: m_connectLock, then the handlers' lock, then m_state. Handlers may call anything
// here, so whatever they can reach only tries m_connectLock.

// Takes what the thread needs before it runs. A thread that is winding down counts as one that runs.
std::int32_t MTCPClientSocket::StartAll() {
    if (MWSAData::Start() != NetSuccess)
        return NetStartup;
    if (!OpenWake())
        return NetSetupFailed;
    return MThread::Start(true) ? NetSuccess : NetStartup;
}

bool MTCPClientSocket::StartThread() {
    return OpenWake() && MThread::Start();
}

bool MTCPClientSocket::OpenWake() {
    const std::lock_guard<std::mutex> guard(m_state);
    return m_wake.Open();
}

std::int32_t MTCPClientSocket::Connect() {
    const std::unique_lock<MLock> lock(m_connectLock, std::try_to_lock);
    if (!lock)
        return IsConnected() ? NetAlreadyConnected : NetConnecting;
    const std::int32_t started = StartAll();
    if (started != NetSuccess)
        return started;
    m_connectionWanted = true;
    return RunConnect(false);
}

// Without the lock: it is held while the end of the last connection is told, which is just when owners ask for the next
// one, and the thread's own try at it must not meet us.
std::int32_t MTCPClientSocket::ConnectAsync() {
    if (m_connecting)
        return NetConnecting;
    const std::int32_t started = StartAll();
    if (started != NetSuccess)
        return started;
    m_connectPending = true;
    m_connectionWanted = true;
    m_wake.Set();
    return NetSuccess;
}

void MTCPClientSocket::Disconnect() {
    m_connectionWanted = false;
    m_connectPending = false;
    StopSocket(false);
    m_lastAttemptMs = 0;
}

void MTCPClientSocket::Reconnect() {
    if (!IsConnected())
        return;
    CloseSocket(true);
    const std::unique_lock<MLock> lock = EnterConnectLock();
    RunConnect(true);
}

// For those who have just closed the socket: that ends a connect which holds the lock, and its handlers' calls end, so
// there is nothing long to wait for. The socket's own thread may come from a handler and only tries.
std::unique_lock<MLock> MTCPClientSocket::EnterConnectLock() {
    if (OnOwnThread())
        return std::unique_lock<MLock>(m_connectLock, std::try_to_lock);
    return std::unique_lock<MLock>(m_connectLock);
}

std::int32_t MTCPClientSocket::RunConnect(bool notify) {
    const std::uint32_t cancelCount = m_resolver.GetCancelCount(); // before the stop flag is looked at
    const std::unique_lock<MLock> lock(m_connectLock, std::try_to_lock);
    if (IsConnected())
        return NetAlreadyConnected;
    if (!lock || m_connecting)
        return NetConnecting;
    m_connecting = true;
    const Attempt attempt = MakeAttempt(cancelCount);
    m_connecting = false;
    m_wake.Set(); // a connection that stands is the thread's to serve
    if (notify && attempt.code == NetSuccess)
        m_handlers.Tell([this](ITCPClientSocketHandler& handler) { handler.OnConnect(this); });
    else if (notify && !attempt.silent)
        TellError(attempt.code);
    return attempt.code;
}

// Handlers hear nothing of what fails before the network is asked.
MTCPClientSocket::Attempt MTCPClientSocket::MakeAttempt(std::uint32_t cancelCount) {
    if (!EveryHandlerAgrees())
        return {NetHostUnreachable, true};
    if (MWSAData::Start() != NetSuccess)
        return {NetStartup, true};
    const std::int32_t made = MakeSocket(cancelCount);
    if (made != NetSuccess)
        return {made, true};
    SocketAddress address;
    const HostResolver::Outcome outcome = m_resolver.Resolve(GetAddress(), cancelCount, address.address);
    if (outcome == HostResolver::Outcome::NotFound)
        return {NetBadAddress, true};
    address.port = NetworkPort(static_cast<std::uint16_t>(GetPort()));
    const bool found = outcome == HostResolver::Outcome::Found;
    const SocketError error = found ? OpenConnection(address, cancelCount) : SocketError::ConnectionAborted;
    if (error == SocketError::None)
        return {NetSuccess, false};
    return {TranslateError(static_cast<std::int32_t>(error)), error == SocketError::WouldBlock};
}

// A socket that an attempt left behind serves the next one.
std::int32_t MTCPClientSocket::MakeSocket(std::uint32_t cancelCount) {
    const std::lock_guard<std::mutex> guard(m_state);
    if (m_resolver.GetCancelCount() != cancelCount || (OnOwnThread() && StopRequested()))
        return NetAborted;
    if (m_connection)
        return NetSuccess;
    auto connection = std::make_shared<Connection>();
    const std::int32_t prepared = PrepareSocket(connection->socket);
    if (prepared == NetSuccess)
        m_connection = std::move(connection);
    return prepared;
}

// The local address and port are the system's choice at the connect: bound before, they would stay with the socket, and
// a port that happens to be the peer's would never connect.
std::int32_t MTCPClientSocket::PrepareSocket(SystemSocket& socket) {
    const auto refuses = [&](SocketOption option, std::int32_t value) {
        return socket.SetOption(option, value) != SocketError::None;
    };
    if (socket.OpenStream() != SocketError::None)
        return NetNoSocket;
    if (m_noDelay && refuses(SocketOption::NoDelay, 1))
        return NetNoDelayFailed;
    if (m_keepAlive.on && socket.SetKeepAlive(true, m_keepAlive.timeMs, m_keepAlive.intervalMs) != SocketError::None)
        return NetNoDelayFailed;
    if (refuses(SocketOption::SendBuffer, m_socketBufferSize) ||
        refuses(SocketOption::ReceiveBuffer, m_socketBufferSize))
        return NetBufferSizeFailed;
    return NetSuccess;
}

// Waits without limit: the system's own time-out applies, and a close ends the wait.
SocketError MTCPClientSocket::OpenConnection(const SocketAddress& address, std::uint32_t cancelCount) {
    const ConnectionPtr connection = CurrentConnection();
    if (!connection || m_resolver.GetCancelCount() != cancelCount)
        return SocketError::ConnectionAborted;
    SocketError error = TryConnection(connection, address, true);
    while (error == SocketError::IoPending) {
        if (!WaitUntilWritable(connection->socket))
            return SocketError::Other;
        error = TryConnection(connection, address, false);
    }
    return error;
}

// One step under m_state, so that a close comes before it, and is seen, or after it, and ends what it began.
SocketError MTCPClientSocket::TryConnection(const ConnectionPtr& connection, const SocketAddress& address, bool first) {
    const std::lock_guard<std::mutex> guard(m_state);
    if (m_connection != connection)
        return SocketError::ConnectionAborted;
    const SocketError error = first ? connection->socket.Connect(address) : connection->socket.FinishConnect(address);
    m_connected = error == SocketError::None;
    return error;
}

std::int32_t MTCPClientSocket::CloseSocket(bool notify) {
    ConnectionPtr connection;
    {
        const std::lock_guard<std::mutex> guard(m_state);
        m_resolver.Cancel();
        connection = std::move(m_connection);
        m_connection = nullptr;
        m_connected = false;
    }
    if (!connection)
        return NetUnknown;
    connection->socket.ShutDown(); // ends a connect, a waiting Send and the thread's wait
    if (notify)
        m_handlers.Tell([this](ITCPClientSocketHandler& handler) { handler.OnClose(this); });
    return IsLibraryStarted() ? NetSuccess : NetStartup;
}

void MTCPClientSocket::RequestStop() {
    MThread::Stop();
    m_wake.Set();
}

void MTCPClientSocket::StopSocket(bool notify) {
    RequestStop();
    CloseSocket(notify);
    if (!OnOwnThread())
        MThread::Wait();
    MWSAData::Stop();
}

std::int32_t MTCPClientSocket::Attach(SystemSocket socket, const SocketAddress& peer) {
    if (!IsLibraryStarted())
        return NetStartup;
    if (!socket.IsOpen())
        return NetNotCreated;
    CloseSocket(false);
    const std::unique_lock<MLock> lock = EnterConnectLock();
    if (!lock || m_connecting)
        return NetConnecting;
    SocketAddress address = peer;
    socket.GetPeerAddress(address);
    SetAddress(DottedText(address.address).c_str());
    SetPort(NetworkPort(address.port));
    if (m_noDelay && socket.SetOption(SocketOption::NoDelay, 1) != SocketError::None)
        return NetNoDelayFailed;
    auto connection = std::make_shared<Connection>();
    connection->socket = std::move(socket);
    const std::lock_guard<std::mutex> guard(m_state);
    m_connection = std::move(connection);
    m_connected = true;
    m_wake.Set();
    return NetSuccess;
}
