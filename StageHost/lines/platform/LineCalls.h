#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace stagehost {

/// @file
/// Sockets as the system has them: what toolkits hide (a half that is closed, a reset, a port that is kept while nobody
/// listens). Descriptors never block, are -1 for none, and belong to the caller. Problems are texts of the system.
/// [any]

/// An address in numbers and a port.
struct NetAddress {
    std::string host; ///< IPv4 or IPv6; empty: any of this machine
    std::uint16_t port = 0;
};

/// The same as the system has it: who has sent a datagram, at no cost but a copy.
struct SenderAddress {
    std::array<char, 28> bytes{}; ///< room for either kind
    std::uint32_t size = 0;

    bool operator<(const SenderAddress& other) const { return bytes < other.bytes; }
};
NetAddress InNumbers(const SenderAddress& address);

enum class IoState {
    Done,  ///< count bytes
    Later, ///< nothing just now
    End,   ///< the other side says no more
    Reset, ///< the other side has thrown the connection away
    Failed
};

struct IoResult {
    IoState state = IoState::Failed;
    std::size_t count = 0;
    std::string problem; ///< with Reset and Failed
};

/// A socket that listens for connections. @param address with port 0 for any free one.
int ListenOn(const NetAddress& address, std::string& problem);

/// A TCP port that is taken and refuses connections, until Listen makes a listener of it.
int HoldPort(const NetAddress& address, std::string& problem);
bool Listen(int held);

/// The next connection. @return -1 when none waits.
int AcceptFrom(int listener, NetAddress& who);

/// Begins to connect; the socket becomes writable when it is known how that went.
int BeginConnect(const NetAddress& address, std::string& problem);
/// Done when the connection stands.
IoResult FinishConnect(int descriptor);

/// A socket for datagrams. @param address with port 0 for any free one.
int OpenDatagrams(const NetAddress& address, std::string& problem);
/// One that speaks with a single other.
int ConnectDatagrams(const NetAddress& other, std::string& problem);
/// A taken port that refuses all datagrams, until Hear has it hear them.
int HoldDatagramPort(const NetAddress& address, std::string& problem);
bool Hear(int held);

NetAddress LocalAddress(int descriptor);

IoResult ReadSome(int descriptor, char* buffer, std::size_t size);
/// Writes what the system takes, possibly less than size.
IoResult WriteSome(int descriptor, const char* data, std::size_t size);
/// The same for what is no socket.
IoResult WriteSomeToTerminal(int descriptor, const char* data, std::size_t size);

/// One datagram; 0 bytes are one too.
IoResult ReceiveFrom(int descriptor, char* buffer, std::size_t size, SenderAddress& who);
IoResult SendTo(int descriptor, const char* data, std::size_t size, const SenderAddress& to);
/// The same with the one other that the socket speaks with.
IoResult Receive(int descriptor, char* buffer, std::size_t size);
IoResult SendTo(int descriptor, const char* data, std::size_t size);

/// A second descriptor of the same thing.
int SecondDescriptor(int descriptor);

/// Says that nothing more comes.
void EndSending(int descriptor);
void CloseLine(int descriptor);
/// Closes a connection so that the other side sees a reset.
void CloseWithReset(int descriptor);

} // namespace stagehost
