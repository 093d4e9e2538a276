#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// One connection of a server that misbehaves on purpose. All calls end when the server is stopped.
class Peer {
public:
    explicit Peer(int socket)
        : m_socket(socket) {}

    /// Reads to the end of the request's headers, and as much of a body as they announce. @return all of it.
    std::string ReadRequest();
    /// @return false when the other side does not take it any more.
    bool Send(const std::string& bytes);
    /// One byte in each packet.
    void SendSlowly(const std::string& bytes);
    /// Sends no more; the other side may go on.
    void HalfClose();
    /// Ends the connection with a reset instead of a farewell.
    void Reset();
    /// Waits until the other side has gone.
    void WaitForClose();

private:
    int m_socket;
};

/// A server on a loopback port of its own that does one thing with each connection, each on a thread of its own.
class HostileServer {
public:
    using Behaviour = std::function<void(Peer&)>;

    explicit HostileServer(Behaviour behaviour);
    ~HostileServer();
    HostileServer(const HostileServer&) = delete;
    HostileServer& operator=(const HostileServer&) = delete;

    std::uint16_t Port() const { return m_port; }
    std::string Address(const std::string& path = "/") const {
        return "http://127.0.0.1:" + std::to_string(m_port) + path;
    }
    int Connections() const { return m_accepted; }
    /// Waits until so many connections were accepted. @return false past the deadline.
    bool WaitForConnections(int count);
    /// Waits until every connection is over. @return false past the deadline.
    bool WaitUntilAllClosed();
    /// For a thread that has to go on with its events meanwhile, since it is the other end.
    bool AllClosed();

private:
    void Accept();
    void Serve(int socket);

    const Behaviour m_behaviour;
    std::uint16_t m_port = 0; // before the listener, which sets it
    int m_listener = -1;
    std::atomic<int> m_accepted{0};
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<int> m_open;            ///< under m_lock: sockets being served
    std::vector<std::thread> m_threads; ///< under m_lock
    bool m_stopping = false;            ///< under m_lock
    std::thread m_acceptor;
};

/// A port of the loopback that nobody listens on.
std::uint16_t UnusedPort();
