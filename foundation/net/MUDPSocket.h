#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "DatagramReader.h"
#include "HandlerList.h"
#include "HostResolver.h"
#include "IUDPSocketHandler.h"
#include "MThread.h"
#include "MWSAData.h"
#include "SocketWait.h"

/// Dotted addresses, filled in by MUDPSocket::GetInterfaceAddresses.
struct InterfaceAddressList {
    using Text = std::array<char, 24>;
    static constexpr std::int32_t kMost = 64;

    std::int32_t count = kMost; ///< how many are wanted, then how many there are
    std::array<Text, kMost> addresses{};
};

/// An IPv4 datagram socket with a thread of its own, which receives and tells handlers. AddHandler, SetPort, the
/// options, then Bind, SendTo as needed, Close. SendTo works without Bind: the socket is made when it is needed, with a
/// port of the system's choice, and nothing is received on it. States: closed and bound; Bind on a bound socket closes
/// it and binds again.
///
/// Operations give codes of NetCodes.h. The setters store what the next Bind uses. Bind and Close are the owner's, one
/// at a time, and wait for a handler's call that runs; they are not to be called from a handler.   [thread: any, where
/// nothing else is said]
class MUDPSocket : public MWSAData, protected MThread {
public:
    MUDPSocket();
    ~MUDPSocket() override;

    /// Adds a handler unless it is there, borrowed until RemoveHandler. RemoveHandler waits for the end of a call that
    /// runs on another thread: the handler may be destroyed afterwards.
    virtual void AddHandler(IUDPSocketHandler* handler);
    virtual void RemoveHandler(IUDPSocketHandler* handler);

    /// A multicast group to join (any other text has no effect on Bind), null as empty, and the local port. After Bind
    /// with port 0 the port is the one that the system chose.
    virtual void SetAddress(const char* address);
    virtual std::string GetAddress();
    virtual void SetPort(std::uint16_t port);
    virtual std::uint16_t GetPort();

    /// The most of a datagram that handlers get, in bytes, 4096
    /// at first; at most GetMaxMessageSize, where that is not 0.
    virtual void SetReceiveBufferSize(std::uint32_t bytes);
    virtual std::uint32_t GetReceiveBufferSize();

    /// The largest datagram in bytes; 0 while there is no socket.
    virtual std::uint32_t GetMaxMessageSize();

    /// Whether the port is this socket's alone, which it is at first. Sockets that are not exclusive can share one.
    virtual void SetExclusivePort(bool on);
    virtual bool GetExclusivePort();

    /// Whether what is sent to a group comes back to this machine, as it does at first.
    virtual void SetMulticastLoopback(bool on);
    virtual bool GetMulticastLoopback();

    /// Binds to the port and starts to receive. With useAddressList and one address, binds to that address (a null
    /// entry stands for this machine's own name); otherwise to all. A multicast group is joined on the interface of
    /// each address, or on the default one.
    /// @return 0, -2 no socket, -3 not an address of this machine, -8 unreadable address, -14 no thread, -22 group, -1
    /// and others for a port that cannot be had. Nothing stays open after a failure.   [thread: the owner's]
    std::int32_t Bind(bool useAddressList, const char* const* addressList, std::int32_t addressCount);

    /// Closes the socket and joins the thread. A name that SendTo is looking up is given up.
    /// @return 0, -7 when there was nothing to close.   [thread: the owner's]
    std::int32_t Close();

    /// Sends one datagram. The address is dotted or a name, which is looked up and may take as long as the system's
    /// resolver; null and "255.255.255.255" broadcast, and allow that to this socket until it is closed. The port is in
    /// the machine's own order.
    /// @return 0, -2 no socket, -3 unknown host, -13.
    std::int32_t SendTo(const char* data, std::int32_t length, const char* address, std::uint16_t port);

    /// Options of the socket, which is made where there is none (-2 when it cannot be). The time to live of multicasts,
    /// 0 to 255; what SetMulticastLoopback says, at once; the interface for multicasts by its address, null for the
    /// default one; the interface for all else by its index, 0 for any. @return 0, or -1, -4, -7, -8, -20, -28, -29,
    /// -30 by the failure.
    std::int32_t SetMulticastScope(std::int32_t timeToLive);
    std::int32_t SetMulticastLoopbackOption(bool on);
    std::int32_t SetMulticastInterface(const char* address);
    std::int32_t SetUnicastInterface(std::uint32_t index);

    /// The addresses of this machine's interfaces that are up; the
    /// count is lowered to what was found. @return 0, -2, -30.
    std::int32_t GetInterfaceAddresses(InterfaceAddressList& list);

    using MThread::GetStackSize;
    using MThread::IsStarted;
    using MThread::SetPriority;
    using MThread::SetStackSize;

private:
    using SocketPtr = std::shared_ptr<SystemSocket>;

    void TellError(std::int32_t code);

    SocketPtr CurrentSocket() const;
    SocketPtr MakeSocket(std::int32_t& code);
    std::int32_t BindSocket(SystemSocket& socket, bool useList, const char* const* list, std::int32_t count);
    bool FindBindAddress(const char* text, std::uint32_t& address);
    std::int32_t JoinGroup(SystemSocket& socket, bool useList, const char* const* list, std::int32_t count);
    bool StartReceiving();
    void StopReceiving();
    void CloseSocket();
    void AllowBroadcast(SystemSocket& socket);
    std::int32_t SetOption(SocketOption option, std::int32_t value);

    std::uint32_t Run() override;
    bool ReceiveBurst(const SystemSocket& socket);
    void DeliverBurst();
    void Deliver(const Datagram& datagram);
    void NoteSource(const SocketAddress& source);
    void ReportReceiveFailure();

    HandlerList<IUDPSocketHandler> m_handlers; // its lock is held while handlers are called
    HostResolver m_resolver;
    SocketWake m_wake; // ends the thread's wait

    mutable std::mutex m_state; // for the fields below
    std::string m_address;
    SocketPtr m_socket;              // shared by all who use it just now; the last closes it
    bool m_broadcastEnabled = false; // of m_socket

    // Written by owners, the port by Bind too; read by any thread.
    std::atomic<std::uint16_t> m_port{0};
    std::atomic<bool> m_exclusivePort{true};
    std::atomic<bool> m_multicastLoopback{true};
    std::atomic<std::uint32_t> m_receiveBufferSize;

    // The socket's thread: the datagrams of a burst, and the sender of the last one that came whole.
    DatagramReader m_reader;
    std::uint32_t m_sourceAddress = 0;
    std::uint16_t m_sourcePort = 0;
    std::string m_sourceText;
};
