#include "SocketWait.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "SystemThread.h"
#include "TimeLimit.h"

namespace {

int Milliseconds(std::uint32_t timeoutMs) {
    if (timeoutMs == kInfinite)
        return -1;
    return timeoutMs > INT_MAX ? INT_MAX : static_cast<int>(timeoutMs);
}

// Interrupted by a signal it waits again, for the rest of the time.
int Poll(pollfd* entries, nfds_t count, std::uint32_t timeoutMs) {
    const TimeLimit limit{std::chrono::milliseconds(timeoutMs)};
    int left = Milliseconds(timeoutMs);
    int result = poll(entries, count, left);
    while (result < 0 && errno == EINTR) {
        if (left > 0)
            left = static_cast<int>(limit.Left().count());
        result = poll(entries, count, left);
    }
    return result;
}

short EventsOf(SocketInterest interest) {
    const int reading = interest == SocketInterest::Writing ? 0 : POLLIN;
    const int writing = interest == SocketInterest::Reading ? 0 : POLLOUT;
    return static_cast<short>(reading | writing);
}

pollfd Entry(SocketHandle handle, short events) {
    return {static_cast<int>(handle), events, 0};
}

} // namespace

SocketWake::~SocketWake() {
    if (IsOpen())
        close(m_handle);
}

bool SocketWake::Open() {
    if (!IsOpen())
        m_handle = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    return IsOpen();
}

void SocketWake::Set() {
    if (IsOpen())
        eventfd_write(m_handle, 1);
}

void SocketWake::Reset() {
    eventfd_t count = 0;
    eventfd_read(m_handle, &count);
}

SocketReadiness WaitForSocket(const SystemSocket* socket, SocketInterest interest, SocketWake& wake,
                              std::uint32_t timeoutMs) {
    std::array<pollfd, 2> entries = {Entry(wake.GetHandle(), POLLIN),
                                     Entry(socket != nullptr ? socket->GetHandle() : kNoSocket, EventsOf(interest))};
    SocketReadiness readiness;
    if (socket != nullptr && !socket->IsOpen())
        return {false, false, false, true};
    readiness.failed = Poll(entries.data(), entries.size(), timeoutMs) < 0 || (entries[1].revents & POLLNVAL) != 0;
    readiness.woken = entries[0].revents != 0;
    readiness.writable = (entries[1].revents & POLLOUT) != 0;
    readiness.ready = (entries[1].revents & ~POLLOUT) != 0;
    if (readiness.woken)
        wake.Reset();
    return readiness;
}

bool WaitUntilWritable(const SystemSocket& socket) {
    pollfd entry = Entry(socket.GetHandle(), POLLOUT);
    return socket.IsOpen() && Poll(&entry, 1, kInfinite) > 0 && (entry.revents & POLLNVAL) == 0;
}
