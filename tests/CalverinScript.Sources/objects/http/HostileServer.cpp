#include "HostileServer.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include "HttpDeadline.h"

namespace {

int ListenOnLoopback(std::uint16_t& port) {
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    ::bind(listener, reinterpret_cast<sockaddr*>(&address), size);
    ::listen(listener, 64);
    ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
    port = ntohs(address.sin_port);
    return listener;
}

std::size_t AnnouncedLength(const std::string& head) {
    std::string lower = head;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    const std::size_t at = lower.find("content-length:");
    return at == std::string::npos ? 0 : std::strtoul(lower.c_str() + at + 15, nullptr, 10);
}

} // namespace

std::uint16_t UnusedPort() {
    std::uint16_t port = 0;
    ::close(ListenOnLoopback(port));
    return port;
}

std::string Peer::ReadRequest() {
    std::string request;
    char buffer[4096];
    for (;;) {
        const std::size_t end = request.find("\r\n\r\n");
        if (end != std::string::npos && request.size() >= end + 4 + AnnouncedLength(request.substr(0, end)))
            return request;
        const ssize_t got = ::recv(m_socket, buffer, sizeof(buffer), 0);
        if (got <= 0)
            return request;
        request.append(buffer, static_cast<std::size_t>(got));
    }
}

bool Peer::Send(const std::string& bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t now = ::send(m_socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (now <= 0)
            return false;
        sent += static_cast<std::size_t>(now);
    }
    return true;
}

void Peer::SendSlowly(const std::string& bytes) {
    const int on = 1;
    ::setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    for (const char byte : bytes)
        if (!Send(std::string(1, byte)))
            return;
}

void Peer::HalfClose() {
    ::shutdown(m_socket, SHUT_WR);
}

void Peer::Reset() {
    const linger now{1, 0};
    ::setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &now, sizeof(now));
}

void Peer::WaitForClose() {
    char buffer[4096];
    while (::recv(m_socket, buffer, sizeof(buffer), 0) > 0) {
    }
}

HostileServer::HostileServer(Behaviour behaviour)
    : m_behaviour(std::move(behaviour))
    , m_listener(ListenOnLoopback(m_port))
    , m_acceptor([this] { Accept(); }) {}

HostileServer::~HostileServer() {
    ::shutdown(m_listener, SHUT_RDWR);
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_stopping = true;
        for (const int socket : m_open)
            ::shutdown(socket, SHUT_RDWR);
    }
    m_acceptor.join();
    for (std::thread& thread : m_threads)
        thread.join();
    ::close(m_listener);
}

void HostileServer::Accept() {
    for (;;) {
        const int socket = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0)
            return;
        const std::lock_guard<std::mutex> guard(m_lock);
        if (m_stopping) {
            ::close(socket);
            return;
        }
        m_open.push_back(socket);
        ++m_accepted;
        m_threads.emplace_back([this, socket] { Serve(socket); });
        m_changed.notify_all();
    }
}

void HostileServer::Serve(int socket) {
    Peer peer(socket);
    m_behaviour(peer);
    const std::lock_guard<std::mutex> guard(m_lock);
    ::close(socket);
    m_open.erase(std::find(m_open.begin(), m_open.end(), socket));
    m_changed.notify_all();
}

bool HostileServer::WaitForConnections(int count) {
    std::unique_lock<std::mutex> guard(m_lock);
    return m_changed.wait_for(guard, kHttpDeadline, [&] { return m_accepted >= count; });
}

bool HostileServer::AllClosed() {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_open.empty();
}

bool HostileServer::WaitUntilAllClosed() {
    std::unique_lock<std::mutex> guard(m_lock);
    return m_changed.wait_for(guard, kHttpDeadline, [&] { return m_open.empty(); });
}
