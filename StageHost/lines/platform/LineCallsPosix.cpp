#include "LineCalls.h"

#include <cerrno>
#include <cstring>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace stagehost {

namespace {

constexpr int kBacklog = 128;
constexpr const char* kNobody = "127.0.0.1";
constexpr std::uint16_t kDiscardPort = 9; // RFC 863

union AnyAddress {
    sockaddr any;
    sockaddr_in four;
    sockaddr_in6 six;
    sockaddr_storage room;
};

std::string ErrorText() {
    return std::strerror(errno);
}

/// @return the length, 0 for what is no address.
socklen_t ToSystem(const NetAddress& address, AnyAddress& out) {
    out = {};
    if (inet_pton(AF_INET6, address.host.c_str(), &out.six.sin6_addr) == 1) {
        out.six.sin6_family = AF_INET6;
        out.six.sin6_port = htons(address.port);
        return sizeof out.six;
    }
    out = {};
    if (!address.host.empty() && inet_pton(AF_INET, address.host.c_str(), &out.four.sin_addr) != 1)
        return 0;
    out.four.sin_family = AF_INET;
    out.four.sin_port = htons(address.port);
    return sizeof out.four;
}

NetAddress FromSystem(const AnyAddress& address) {
    char text[INET6_ADDRSTRLEN] = {};
    const bool isSix = address.any.sa_family == AF_INET6;
    const void* number = isSix ? static_cast<const void*>(&address.six.sin6_addr) : &address.four.sin_addr;
    inet_ntop(address.any.sa_family, number, text, sizeof text);
    return {text, ntohs(isSix ? address.six.sin6_port : address.four.sin_port)};
}

void Switch(int descriptor, int level, int option) {
    const int on = 1;
    setsockopt(descriptor, level, option, &on, sizeof on);
}

int Fail(int descriptor, std::string& problem) {
    problem = ErrorText();
    CloseLine(descriptor);
    return -1;
}

int Open(const NetAddress& address, int type, AnyAddress& system, socklen_t& length, std::string& problem) {
    length = ToSystem(address, system);
    if (length == 0) {
        problem = "\"" + address.host + "\" is no address";
        return -1;
    }
    const int descriptor = socket(system.any.sa_family, type | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    return descriptor < 0 ? Fail(descriptor, problem) : descriptor;
}

int OpenBound(const NetAddress& address, int type, std::string& problem) {
    AnyAddress system;
    socklen_t length = 0;
    const int descriptor = Open(address, type, system, length, problem);
    if (descriptor < 0)
        return -1;
    if (type == SOCK_STREAM)
        Switch(descriptor, SOL_SOCKET, SO_REUSEADDR);
    return bind(descriptor, &system.any, length) == 0 ? descriptor : Fail(descriptor, problem);
}

int OpenConnected(const NetAddress& address, int type, std::string& problem) {
    AnyAddress system;
    socklen_t length = 0;
    const int descriptor = Open(address, type, system, length, problem);
    if (descriptor < 0)
        return -1;
    if (type == SOCK_STREAM)
        Switch(descriptor, IPPROTO_TCP, TCP_NODELAY);
    const bool isUnderWay = connect(descriptor, &system.any, length) == 0 || errno == EINPROGRESS;
    return isUnderWay ? descriptor : Fail(descriptor, problem);
}

IoResult Result(ssize_t count, IoState none) {
    if (count > 0)
        return {IoState::Done, static_cast<std::size_t>(count), {}};
    if (count == 0)
        return {none, 0, {}};
    if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)
        return {IoState::Later, 0, {}};
    return {errno == ECONNRESET || errno == EPIPE ? IoState::Reset : IoState::Failed, 0, ErrorText()};
}

} // namespace

int ListenOn(const NetAddress& address, std::string& problem) {
    const int descriptor = HoldPort(address, problem);
    if (descriptor < 0 || Listen(descriptor))
        return descriptor;
    return Fail(descriptor, problem);
}

int HoldPort(const NetAddress& address, std::string& problem) {
    return OpenBound(address, SOCK_STREAM, problem);
}

bool Listen(int held) {
    return listen(held, kBacklog) == 0;
}

int AcceptFrom(int listener, NetAddress& who) {
    AnyAddress system{};
    socklen_t length = sizeof system;
    const int descriptor = accept4(listener, &system.any, &length, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (descriptor < 0)
        return -1;
    Switch(descriptor, IPPROTO_TCP, TCP_NODELAY);
    who = FromSystem(system);
    return descriptor;
}

int BeginConnect(const NetAddress& address, std::string& problem) {
    return OpenConnected(address, SOCK_STREAM, problem);
}

IoResult FinishConnect(int descriptor) {
    int error = 0;
    socklen_t length = sizeof error;
    getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &error, &length);
    if (error == 0)
        return {IoState::Done, 0, {}};
    return {error == ECONNRESET ? IoState::Reset : IoState::Failed, 0, std::strerror(error)};
}

int OpenDatagrams(const NetAddress& address, std::string& problem) {
    return OpenBound(address, SOCK_DGRAM, problem);
}

int ConnectDatagrams(const NetAddress& other, std::string& problem) {
    return OpenConnected(other, SOCK_DGRAM, problem);
}

/// A socket that is connected hears its one partner alone; the system refuses all others.
int HoldDatagramPort(const NetAddress& address, std::string& problem) {
    const int descriptor = OpenDatagrams(address, problem);
    AnyAddress nobody;
    const socklen_t length = ToSystem({kNobody, kDiscardPort}, nobody);
    const bool isHeld =
        descriptor < 0 || nobody.any.sa_family != AF_INET || connect(descriptor, &nobody.any, length) == 0;
    return isHeld ? descriptor : Fail(descriptor, problem);
}

bool Hear(int held) {
    AnyAddress none{};
    none.any.sa_family = AF_UNSPEC;
    return connect(held, &none.any, sizeof none.any) == 0;
}

NetAddress LocalAddress(int descriptor) {
    AnyAddress system{};
    socklen_t length = sizeof system;
    getsockname(descriptor, &system.any, &length);
    return FromSystem(system);
}

IoResult ReadSome(int descriptor, char* buffer, std::size_t size) {
    return Result(read(descriptor, buffer, size), IoState::End);
}

IoResult WriteSome(int descriptor, const char* data, std::size_t size) {
    return Result(send(descriptor, data, size, MSG_NOSIGNAL), IoState::Later);
}

IoResult WriteSomeToTerminal(int descriptor, const char* data, std::size_t size) {
    return Result(write(descriptor, data, size), IoState::Later);
}

NetAddress InNumbers(const SenderAddress& address) {
    AnyAddress system{};
    std::memcpy(&system, address.bytes.data(), address.size);
    return FromSystem(system);
}

IoResult ReceiveFrom(int descriptor, char* buffer, std::size_t size, SenderAddress& who) {
    static_assert(sizeof(sockaddr_in6) <= sizeof who.bytes);
    AnyAddress system{};
    socklen_t length = sizeof who.bytes;
    IoResult result = Result(recvfrom(descriptor, buffer, size, 0, &system.any, &length), IoState::Done);
    if (result.state != IoState::Done)
        return result;
    who = {};
    who.size = length;
    std::memcpy(who.bytes.data(), &system, length);
    return result;
}

IoResult SendTo(int descriptor, const char* data, std::size_t size, const SenderAddress& to) {
    AnyAddress system;
    std::memcpy(&system, to.bytes.data(), to.size);
    return Result(sendto(descriptor, data, size, MSG_NOSIGNAL, &system.any, to.size), IoState::Done);
}

IoResult Receive(int descriptor, char* buffer, std::size_t size) {
    return Result(recv(descriptor, buffer, size, 0), IoState::Done);
}

IoResult SendTo(int descriptor, const char* data, std::size_t size) {
    return Result(send(descriptor, data, size, MSG_NOSIGNAL), IoState::Done);
}

int SecondDescriptor(int descriptor) {
    return fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
}

void EndSending(int descriptor) {
    shutdown(descriptor, SHUT_WR);
}

void CloseLine(int descriptor) {
    if (descriptor >= 0)
        close(descriptor);
}

void CloseWithReset(int descriptor) {
    const linger atOnce{1, 0};
    setsockopt(descriptor, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    CloseLine(descriptor);
}

} // namespace stagehost
