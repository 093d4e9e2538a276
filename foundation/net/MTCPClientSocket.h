#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "HandlerList.h"
#include "HostResolver.h"
#include "ITCPClientSocketHandler.h"
#include "MLock.h"
#include "MThread.h"
#include "MWSAData.h"
#include "SendQueue.h"
#include "SocketWait.h"

/// A TCP client with a thread of its own, which connects, receives and tells handlers. AddHandler, SetPort, SetAddress,
/// then Connect or ConnectAsync, Send as needed, Disconnect. States: idle (no socket), connecting, connected, lost (the
/// peer closed; the thread lives and may connect again). docs/sockets.md has the states, threads and locks.
///
/// Operations give codes of NetCodes.h and may be called on any thread, from handlers too, where nothing else is said.
/// A connect in progress never makes another operation wait. The destructor stops with notification; it is not to be
/// called from a handler.   [thread: any]
class MTCPClientSocket : public MWSAData, protected MThread {
public:
    MTCPClientSocket();
    ~MTCPClientSocket() override;

    /// Adds a handler unless it is there, borrowed until RemoveHandler. RemoveHandler waits for the end of a call that
    /// runs on another thread: the handler may be destroyed afterwards.
    virtual void AddHandler(ITCPClientSocketHandler* handler);
    virtual void RemoveHandler(ITCPClientSocketHandler* handler);

    /// A host name or dotted address, null as empty, and the peer's port. Where the
    /// value changes while a connection stands, that one is closed and a new one opened
    /// before the operation returns, both with notification on the caller's thread.
    virtual void SetAddress(const char* host);
    virtual std::string GetAddress();
    virtual void SetPort(std::int32_t port);
    virtual std::int32_t GetPort();

    /// Whether small blocks are sent at once. @return 0, -20 when it is only noted for the next socket, -23.
    virtual std::int32_t SetNoDelay(bool on);
    virtual bool GetNoDelay();

    /// Whether a connection that failed or was lost is tried again, at
    /// most every 2000 ms, once Connect or ConnectAsync was called.
    virtual void SetAutoReconnect(bool on);
    virtual bool GetAutoReconnect();

    /// Whether the thread ends when the peer closes.
    virtual void SetStopOnClose(bool on);
    virtual bool GetStopOnClose();

    /// The system's buffers of the next socket, for each direction, in bytes.
    virtual std::int32_t GetSocketBufferSize();
    virtual void SetSocketBufferSize(std::int32_t bytes);

    /// Connects on the caller's thread, without telling handlers. Waits as long as the system tries; Disconnect on
    /// another thread ends the wait. @return 0, -3 unknown host, -6 vetoed or unreachable, -11, -26 while another
    /// connect runs, -31 ended by Disconnect, or the code of the failure.
    virtual std::int32_t Connect();

    /// Has the socket's thread connect once, as soon as 2000 ms have passed since its last attempt; handlers hear the
    /// result, but for a host name that has no address. @return 0, -26 while a connect runs on another thread, -7 or
    /// -14 without a thread.
    virtual std::int32_t ConnectAsync();

    /// Closes without notification and joins the thread (from a handler: lets it end). What waits in Connect or Send is
    /// freed. The next connect need not wait for the 2000 ms.
    virtual void Disconnect();

    /// Takes over a connection that was accepted elsewhere, after Start() of the library; the thread is StartThread()'s
    /// matter. The address serves where the system does not tell the peer's. @return 0, -7 not started, -20 no socket,
    /// -23, -26 while a connect runs.
    virtual std::int32_t Attach(SystemSocket socket, const SocketAddress& peer);

    /// Sends all bytes. Waits for the peer where need be, except on the socket's own thread, which leaves up to 16 MB
    /// behind to be sent later. @return 0, also when the connection broke while it waited; -7, -8 for null, -9, -10
    /// failed at once.
    virtual std::int32_t Send(const char* data, std::int32_t length);

    virtual bool IsConnected();

    /// Whether the system looks after a silent peer: after timeMs,
    /// then every intervalMs, both in whole seconds, rounded up.
    /// @return 0, -20 when it is only noted for the next socket, -8 out of range, or the code of the failure.
    virtual std::int32_t SetKeepAlive(bool on, std::uint32_t timeMs, std::uint32_t intervalMs);

    /// Tells the peer that nothing more comes; receiving goes on. @return 0, -7 not started, -9 not connected, -20, -1.
    std::int32_t ShutdownSend();

    /// Whether what comes is read, as it is at first. What is not read stays with the system, so that the peer has to
    /// wait once the system's buffers are full; then data and the end of the connection are heard when reading goes on.
    /// Holds for later connections too. Never waits, and takes no lock.
    void SetReading(bool on);

    /// Starts the thread without waiting. One that is winding down counts as running: none is started then.
    /// @return false when the system gives no thread or no descriptor.
    bool StartThread();

    /// Asks the thread to end, without waiting and without touching the connection.
    void RequestStop();

    using MThread::GetStackSize;
    using MThread::IsStarted;
    using MThread::SetPriority;
    using MThread::SetStackSize;
    using MThread::Wait;

private:
    /// One socket and what it still has to send. Shared by all who use it just now; the last closes it.
    struct Connection {
        SystemSocket socket;
        SendQueue outgoing;
    };
    using ConnectionPtr = std::shared_ptr<Connection>;

    struct KeepAlive {
        bool on = false;
        std::uint32_t timeMs = 2000;
        std::uint32_t intervalMs = 5000;
    };

    /// How an attempt to connect ended; silent: handlers hear nothing of it.
    struct Attempt {
        std::int32_t code;
        bool silent;
    };

    void TellError(std::int32_t code);
    bool EveryHandlerAgrees();

    bool OnOwnThread() const { return std::this_thread::get_id() == m_threadId.load(); }
    ConnectionPtr CurrentConnection() const;
    ConnectionPtr StandingConnection() const;

    std::int32_t StartAll();
    void Reconnect();
    std::unique_lock<MLock> EnterConnectLock();
    bool OpenWake();
    std::int32_t RunConnect(bool notify);
    Attempt MakeAttempt(std::uint32_t cancelCount);
    std::int32_t MakeSocket(std::uint32_t cancelCount);
    std::int32_t PrepareSocket(SystemSocket& socket);
    SocketError OpenConnection(const SocketAddress& address, std::uint32_t cancelCount);
    SocketError TryConnection(const ConnectionPtr& connection, const SocketAddress& address, bool first);
    std::int32_t CloseSocket(bool notify);
    void StopSocket(bool notify);

    std::uint32_t Run() override;
    void ConnectWhenWanted();
    std::uint32_t MillisecondsToNextAttempt() const;
    void Serve(const ConnectionPtr& connection);
    SocketReadiness WaitForWork(const Connection& connection);
    bool ReadSome(const ConnectionPtr& connection);
    bool MakeRoom(const SystemSocket& socket);
    bool CountPending(const SystemSocket& socket, std::uint32_t& pending);
    void Lose(const ConnectionPtr& connection, SocketError error);
    void LoseForWantOfMemory();
    void BackOff();

    HandlerList<ITCPClientSocketHandler> m_handlers; // its lock is held while handlers are called
    MLock m_connectLock;                             // held for each connect and while a lost connection is closed
    std::atomic<bool> m_connecting{false};           // a connect runs; written under m_connectLock, read by all
    HostResolver m_resolver;                         // its cancel count tells a connect that it was ended
    SocketWake m_wake;                               // ends the thread's wait
    std::unique_ptr<char[]> m_receiveBuffer;         // the socket's thread
    std::size_t m_receiveBufferSize;                 // the socket's thread; grows, never shrinks

    mutable std::mutex m_state; // for the fields below, and to open m_wake
    std::string m_host;
    std::int32_t m_port = 0;
    KeepAlive m_keepAlive;
    ConnectionPtr m_connection; // from a connect to the close; null when idle or lost
    bool m_connected = false;   // m_connection stands

    // Written by owners, and where it is said by the socket's thread; read by both.
    std::atomic<std::int32_t> m_socketBufferSize;
    std::atomic<bool> m_noDelay{false};
    std::atomic<bool> m_autoReconnect{false};
    std::atomic<bool> m_stopOnClose{false};
    std::atomic<bool> m_reading{true};
    std::atomic<bool> m_connectionWanted{false};   // the thread may connect
    std::atomic<bool> m_connectPending{false};     // the thread is to connect once; cleared by the thread too
    std::atomic<std::uint32_t> m_lastAttemptMs{0}; // of the thread, 0 for none; written by the thread too
    std::atomic<std::thread::id> m_threadId{};     // while the thread runs; written by the thread
};
