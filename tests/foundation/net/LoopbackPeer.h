#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The other end of a connection, or a plain datagram socket, on plain system calls. Every wait has a deadline.
class Peer {
public:
    explicit Peer(int descriptor = -1)
        : m_descriptor(descriptor) {}
    ~Peer();
    Peer(Peer&& other) noexcept;
    Peer& operator=(Peer&& other) noexcept;

    static Peer Datagrams(const char* address = "127.0.0.1", bool shared = false);

    bool IsOpen() const { return m_descriptor >= 0; }
    int GetDescriptor() const { return m_descriptor; }
    int Release();
    std::uint16_t GetPort() const;

    bool Send(const std::string& bytes) const;
    /// Exactly that many bytes, or fewer at the end of the stream, or after the deadline.
    std::string Receive(std::size_t count) const;
    /// The next datagram; "(nothing)" after the deadline.
    std::string ReceiveDatagram(std::uint32_t* sourcePort = nullptr) const;
    bool SendTo(const std::string& bytes, std::uint16_t port, const char* address = "127.0.0.1") const;
    /// True when the other side has closed (or reset) within the deadline, whatever it sent before.
    bool SeesTheEnd() const;

    void ShutDownSending() const;
    void Reset();
    void Close();

private:
    int m_descriptor;
};

/// A listening socket on 127.0.0.1 with a free port.
class Listener {
public:
    explicit Listener(int backlog = 64);

    std::uint16_t GetPort() const { return m_socket.GetPort(); }
    Peer Accept() const;
    void Close() { m_socket.Close(); }
    /// Ends an Accept that waits on another thread; it gives a peer that is not open.
    void Interrupt() const;
    /// Listens again at the port of before.
    void Reopen(std::uint16_t port);

private:
    Peer m_socket;
};

/// A port on 127.0.0.1 that answers no connect: its queue is full.
class SilentPort {
public:
    SilentPort();
    std::uint16_t GetPort() const { return m_listener.GetPort(); }

private:
    Listener m_listener;
    std::vector<Peer> m_fillers;
};

/// A port of 127.0.0.1 where nobody listens.
std::uint16_t ClosedPort();

std::size_t CountDescriptors();
std::size_t CountThreads();
/// The numbers of the threads that the process has now, in order.
std::vector<int> Threads();
/// The descriptors of the sockets that the process has now.
std::vector<int> SocketDescriptors();
std::uint16_t LocalPortOf(int descriptor);

/// Puts a file that is no socket in the place of somebody else's descriptor, so that the system refuses what is asked
/// of it. Called past the sanitizers, which take it for a race. @return the socket that was there.
Peer ReplaceByZeros(int descriptor);
