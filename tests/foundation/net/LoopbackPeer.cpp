#include "LoopbackPeer.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "Deadline.h"

namespace {

sockaddr_in Address(const char* text, std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = inet_addr(text);
    address.sin_port = htons(port);
    return address;
}

const sockaddr* Plain(const sockaddr_in& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

bool Readable(int descriptor) {
    pollfd entry{descriptor, POLLIN, 0};
    return poll(&entry, 1, kDeadlineMs) == 1;
}

int Bound(int type, const char* text, std::uint16_t port, bool shared) {
    const int descriptor = socket(AF_INET, type | SOCK_CLOEXEC, 0);
    const int on = 1;
    if (shared)
        setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    const sockaddr_in address = Address(text, port);
    if (bind(descriptor, Plain(address), sizeof address) != 0)
        abort();
    return descriptor;
}

std::size_t CountEntries(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

} // namespace

Peer::~Peer() {
    Close();
}

Peer::Peer(Peer&& other) noexcept
    : m_descriptor(other.Release()) {}

Peer& Peer::operator=(Peer&& other) noexcept {
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
}

Peer Peer::Datagrams(const char* address, bool shared) {
    return Peer(Bound(SOCK_DGRAM, address, 0, shared));
}

int Peer::Release() {
    return std::exchange(m_descriptor, -1);
}

std::uint16_t Peer::GetPort() const {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(m_descriptor, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

bool Peer::Send(const std::string& bytes) const {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t sent = send(m_descriptor, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        done += static_cast<std::size_t>(sent);
    }
    return true;
}

std::string Peer::Receive(std::size_t count) const {
    std::string bytes;
    std::array<char, 65536> buffer{};
    while (bytes.size() < count && Readable(m_descriptor)) {
        const ssize_t got = recv(m_descriptor, buffer.data(), std::min(buffer.size(), count - bytes.size()), 0);
        if (got <= 0)
            break;
        bytes.append(buffer.data(), static_cast<std::size_t>(got));
    }
    return bytes;
}

std::string Peer::ReceiveDatagram(std::uint32_t* sourcePort) const {
    std::array<char, 65536> buffer{};
    sockaddr_in source{};
    socklen_t size = sizeof source;
    if (!Readable(m_descriptor))
        return "(nothing)";
    const ssize_t got =
        recvfrom(m_descriptor, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr*>(&source), &size);
    if (sourcePort)
        *sourcePort = ntohs(source.sin_port);
    return got < 0 ? "(error)" : std::string(buffer.data(), static_cast<std::size_t>(got));
}

bool Peer::SendTo(const std::string& bytes, std::uint16_t port, const char* address) const {
    const sockaddr_in target = Address(address, port);
    return sendto(m_descriptor, bytes.data(), bytes.size(), 0, Plain(target), sizeof target) ==
           static_cast<ssize_t>(bytes.size());
}

bool Peer::SeesTheEnd() const {
    std::array<char, 65536> buffer{};
    while (Readable(m_descriptor)) {
        if (recv(m_descriptor, buffer.data(), buffer.size(), 0) <= 0)
            return true;
    }
    return false;
}

void Peer::ShutDownSending() const {
    shutdown(m_descriptor, SHUT_WR);
}

void Peer::Reset() {
    const linger atOnce{1, 0};
    setsockopt(m_descriptor, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    Close();
}

void Peer::Close() {
    if (IsOpen())
        close(Release());
}

Listener::Listener(int backlog)
    : m_socket(Bound(SOCK_STREAM, "127.0.0.1", 0, true)) {
    listen(m_socket.GetDescriptor(), backlog);
}

void Listener::Reopen(std::uint16_t port) {
    m_socket = Peer(Bound(SOCK_STREAM, "127.0.0.1", port, true));
    listen(m_socket.GetDescriptor(), 64);
}

void Listener::Interrupt() const {
    shutdown(m_socket.GetDescriptor(), SHUT_RDWR);
}

Peer Listener::Accept() const {
    if (!Readable(m_socket.GetDescriptor()))
        return Peer();
    return Peer(accept4(m_socket.GetDescriptor(), nullptr, nullptr, SOCK_CLOEXEC));
}

SilentPort::SilentPort()
    : m_listener(0) {
    const sockaddr_in address = Address("127.0.0.1", GetPort());
    for (int i = 0; i < 3; ++i) {
        m_fillers.emplace_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        connect(m_fillers.back().GetDescriptor(), Plain(address), sizeof address);
    }
}

std::uint16_t ClosedPort() {
    return Listener().GetPort();
}

std::size_t CountDescriptors() {
    return CountEntries("/proc/self/fd");
}

std::size_t CountThreads() {
    return CountEntries("/proc/self/task");
}

std::vector<int> Threads() {
    std::vector<int> numbers;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task"))
        numbers.push_back(std::stoi(entry.path().filename().string()));
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

std::vector<int> SocketDescriptors() {
    std::vector<int> sockets;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        const int descriptor = std::stoi(entry.path().filename().string());
        std::error_code gone; // the listing's own descriptor is in the list
        if (std::filesystem::read_symlink(entry.path(), gone).string().rfind("socket:", 0) == 0)
            sockets.push_back(descriptor);
    }
    return sockets;
}

std::uint16_t LocalPortOf(int descriptor) {
    Peer view(descriptor);
    const std::uint16_t port = view.GetPort();
    view.Release();
    return port;
}

Peer ReplaceByZeros(int descriptor) {
    Peer original(static_cast<int>(syscall(SYS_fcntl, descriptor, F_DUPFD_CLOEXEC, 0)));
    const Peer zeros(open("/dev/zero", O_RDONLY | O_CLOEXEC));
    if (syscall(SYS_dup3, zeros.GetDescriptor(), descriptor, O_CLOEXEC) != descriptor)
        abort();
    return original;
}
