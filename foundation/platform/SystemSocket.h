#pragma once

#include <cstddef>
#include <cstdint>

#include "SocketAddress.h"
#include "SocketError.h"

/// The system's number for a socket.
using SocketHandle = std::intptr_t;
inline constexpr SocketHandle kNoSocket = -1;

/// Options that hold one number. Those of multicast and unicast interfaces
/// take an address in network byte order and an interface's index.
enum class SocketOption {
    NoDelay,
    SendBuffer,    ///< bytes
    ReceiveBuffer, ///< bytes
    ReuseAddress,
    Broadcast,
    MulticastLoop,
    MulticastScope, ///< the time to live, 0 to 255
    MulticastInterface,
    UnicastInterface,
};

/// How much a transfer moved, or why it did not. With an error nothing was moved.
struct SocketTransfer {
    std::size_t bytes = 0;
    SocketError error = SocketError::None;
};

/// One IPv4 socket of the system, closed by the destructor. No operation waits, except SendTo, which waits for room in
/// the socket's buffer; none raises a signal; those that a signal interrupts go on by themselves.
///
/// Operations may be called on several threads at once, but an object must outlive them all: share it, and to end those
/// that wait on it (see SocketWait.h) call ShutDown(), which is for any thread.   [thread: any]
class SystemSocket {
public:
    SystemSocket() = default;
    /// Takes over a socket of the system.
    explicit SystemSocket(SocketHandle handle);
    ~SystemSocket();
    SystemSocket(SystemSocket&& other) noexcept;
    SystemSocket& operator=(SystemSocket&& other) noexcept;
    SystemSocket(const SystemSocket&) = delete;
    SystemSocket& operator=(const SystemSocket&) = delete;

    /// Makes a socket for streams or for datagrams in place of the one held before. Of multicasts it gets those of the
    /// groups that it has joined itself.
    SocketError OpenStream();
    SocketError OpenDatagram();

    bool IsOpen() const { return m_handle != kNoSocket; }
    SocketHandle GetHandle() const { return m_handle; }

    SocketError SetOption(SocketOption option, std::int32_t value);

    /// Asks the peer for signs of life after timeMs without traffic, then every intervalMs. The system counts in
    /// seconds: both are rounded up, and are at most 32767 seconds.
    SocketError SetKeepAlive(bool on, std::uint32_t timeMs, std::uint32_t intervalMs);

    /// Joins a multicast group on the interface with an address, 0 for the default one.
    SocketError JoinGroup(std::uint32_t group, std::uint32_t interfaceAddress);

    SocketError Bind(const SocketAddress& address);
    SocketError GetLocalAddress(SocketAddress& address) const;
    SocketError GetPeerAddress(SocketAddress& address) const;

    /// Begins to connect. @return None when the connection stands already, IoPending while it is under way.
    SocketError Connect(const SocketAddress& address);

    /// The result of a connect that was under way, once the socket is ready for writing;
    /// IoPending when it still is. After a failure the socket can connect again. A
    /// socket that met itself, as can happen with a free local port, was refused.
    SocketError FinishConnect(const SocketAddress& address);

    /// The bytes that can be received at once.
    SocketError GetPendingCount(std::uint32_t& count) const;

    /// Receives up to size bytes. 0 bytes without error: the peer
    /// has closed its side. WouldBlock when nothing is there.
    SocketTransfer Receive(char* buffer, std::size_t size);

    /// Sends what the socket's buffer takes, possibly less than size. WouldBlock when it takes nothing.
    SocketTransfer Send(const char* data, std::size_t size);

    /// Sends one datagram.
    SocketError SendTo(const char* data, std::size_t size, const SocketAddress& to);

    /// The largest datagram that the socket can carry, in bytes.
    static std::uint32_t GetMaxMessageSize();

    /// Tells the peer that nothing more comes.
    SocketError ShutDownSending();

    /// Ends both directions: what was sent still arrives, then the peer sees the end. Ends a connect that is under way,
    /// and wakes everybody who waits on the socket.
    void ShutDown();

private:
    SocketError Open(int type);
    void Dissolve();
    void Close();

    SocketHandle m_handle = kNoSocket;
};
