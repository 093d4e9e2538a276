#include <algorithm>

#include "Clock.h"
#include "MTCPClientSocket.h"
#include "RunWithinMemory.h"

// The body of the socket's thread. It waits in WaitForSocket, which m_wake ends, and after a failure in BackOff, which
// a stop ends.

namespace {

constexpr std::uint32_t kBetweenAttemptsMs = 2000;

} // namespace

std::uint32_t MTCPClientSocket::Run() {
    m_threadId = std::this_thread::get_id();
    const auto turn = [this] {
        if (const ConnectionPtr connection = StandingConnection())
            Serve(connection);
        else
            ConnectWhenWanted();
    };
    while (!StopRequested()) {
        if (!RunWithinMemory(turn))
            RunWithinMemory([this] { LoseForWantOfMemory(); });
    }
    m_threadId = std::thread::id();
    return 0;
}

// A pending connect waits for its time and is never dropped.
void MTCPClientSocket::ConnectWhenWanted() {
    std::uint32_t waitMs = kInfinite;
    if (m_connectionWanted && (m_autoReconnect || m_connectPending))
        waitMs = MillisecondsToNextAttempt();
    if (waitMs != 0) {
        if (WaitForSocket(nullptr, SocketInterest::Reading, m_wake, waitMs).failed)
            BackOff();
        return;
    }
    m_connectPending = false;
    m_lastAttemptMs = std::max<std::uint32_t>(1, MillisecondClock());
    RunConnect(true);
}

std::uint32_t MTCPClientSocket::MillisecondsToNextAttempt() const {
    const std::uint32_t last = m_lastAttemptMs;
    const std::uint32_t passed = MillisecondClock() - last;
    return last == 0 || passed >= kBetweenAttemptsMs ? 0 : kBetweenAttemptsMs - passed;
}

void MTCPClientSocket::Serve(const ConnectionPtr& connection) {
    while (!StopRequested() && StandingConnection() == connection) {
        const SocketReadiness readiness = WaitForWork(*connection);
        if (StopRequested())
            return;
        if (readiness.failed) {
            TellError(NetSetupFailed);
            return BackOff();
        }
        if (readiness.writable)
            connection->outgoing.Flush(connection->socket);
        if (readiness.ready && !ReadSome(connection))
            return;
    }
}

// What is not to be read is not waited for either: a socket at its end would be ready for ever.
SocketReadiness MTCPClientSocket::WaitForWork(const Connection& connection) {
    const bool unsent = connection.outgoing.HasUnsent();
    const bool reading = m_reading;
    const SocketInterest toRead = unsent ? SocketInterest::Both : SocketInterest::Reading;
    SocketReadiness readiness = WaitForSocket(reading || unsent ? &connection.socket : nullptr,
                                              reading ? toRead : SocketInterest::Writing, m_wake, kInfinite);
    readiness.writable = readiness.writable || (readiness.ready && !reading); // sending finds the end, and gives up
    readiness.ready = readiness.ready && m_reading;
    return readiness;
}

// False when the connection is over. What came before the end is delivered first. Mostly the buffer has room for all
// that is there, and one call of the system takes it.
bool MTCPClientSocket::ReadSome(const ConnectionPtr& connection) {
    SocketTransfer received = connection->socket.Receive(m_receiveBuffer.get(), m_receiveBufferSize);
    std::size_t filled = received.bytes;
    if (filled == m_receiveBufferSize && MakeRoom(connection->socket)) {
        received = connection->socket.Receive(m_receiveBuffer.get() + filled, m_receiveBufferSize - filled);
        filled += received.bytes;
    }
    if (filled > 0) {
        const auto length = static_cast<std::int32_t>(filled);
        m_handlers.Tell([&](ITCPClientSocketHandler& handler) { handler.OnData(m_receiveBuffer.get(), length, this); });
    }
    if (received.bytes > 0 || received.error == SocketError::WouldBlock)
        return true;
    std::uint32_t pending = 0;
    if (received.error != SocketError::None && !CountPending(connection->socket, pending))
        return true;
    Lose(connection, received.error);
    return false;
}

// Lets the full buffer grow by what the system still has. @return false when that is nothing.
bool MTCPClientSocket::MakeRoom(const SystemSocket& socket) {
    std::uint32_t pending = 0;
    if (!CountPending(socket, pending) || pending == 0)
        return false;
    std::unique_ptr<char[]> larger(new char[m_receiveBufferSize + pending]);
    std::copy_n(m_receiveBuffer.get(), m_receiveBufferSize, larger.get());
    m_receiveBuffer = std::move(larger);
    m_receiveBufferSize += pending;
    return true;
}

// A socket of which the system cannot even say this is not at its end, but out of order.
bool MTCPClientSocket::CountPending(const SystemSocket& socket, std::uint32_t& pending) {
    if (socket.GetPendingCount(pending) == SocketError::None)
        return true;
    TellError(NetReadFailed);
    BackOff();
    return false;
}

// What was read then is lost, and what comes behind it would be misread.
void MTCPClientSocket::LoseForWantOfMemory() {
    const ConnectionPtr connection = StandingConnection();
    Sleep(kBackOffMs);
    TellError(connection ? NetReadFailed : NetSetupFailed);
    if (connection)
        Lose(connection, SocketError::None);
}

// The peer closed or reset. Who closed the socket before us has told of it.
void MTCPClientSocket::Lose(const ConnectionPtr& connection, SocketError error) {
    const std::lock_guard<MLock> lock(m_connectLock);
    {
        const std::lock_guard<std::mutex> guard(m_state);
        if (m_connection != connection)
            return;
        m_connection = nullptr;
        m_connected = false;
    }
    if (error == SocketError::None)
        error = connection->outgoing.GetFailure(); // told to a sender, and to nobody else
    if (error != SocketError::None)
        TellError(TranslateError(static_cast<std::int32_t>(error)));
    const bool stop = m_stopOnClose;
    if (stop)
        RequestStop();
    connection->socket.ShutDown();
    m_handlers.Tell([this](ITCPClientSocketHandler& handler) { handler.OnClose(this); });
    if (stop)
        MWSAData::Stop();
}

// A system that refuses to wait or to read must not make the thread spin. It may be waiting itself that fails.
void MTCPClientSocket::BackOff() {
    Sleep(kBackOffMs);
}
