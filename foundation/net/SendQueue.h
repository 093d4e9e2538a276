#pragma once

#include <atomic>
#include <cstddef>
#include <mutex>
#include <vector>

#include "SystemSocket.h"

/// The outgoing side of one connection.
/// - The bytes of one call stay together and calls of one thread keep their order.
/// - The socket's own thread never waits: what the socket does not take at once is kept here until it does.
/// - Any other thread waits until the socket has taken all, or was shut down.
/// - A failure that comes after a call had to wait is not that call's: the reader of the connection hears of it.
/// - The system tells a failure once, to the sender or to the reader: what a sender was told is kept for the reader.
class SendQueue {
public:
    /// Bytes that may wait here, unless they are one call's. A peer that does not read must not fill the memory.
    static constexpr std::size_t kMostUnsent = std::size_t{16} << 20;

    /// Sends all, waiting if need be. Further callers wait their turn.
    /// @return false when it failed before anything was sent.   [thread: any but the socket's]
    bool Send(SystemSocket& socket, const char* data, std::size_t size);

    /// Sends what the socket takes and keeps the rest for Flush.
    /// @return false when the connection is broken or too much waits already.   [thread: socket]
    bool SendWithoutWaiting(SystemSocket& socket, const char* data, std::size_t size);

    /// Sends what waits, as far as the socket takes it. Call it when the socket can be written.   [thread: any]
    void Flush(SystemSocket& socket);

    /// Whether Flush has something to do.   [thread: any]
    bool HasUnsent() const { return m_hasUnsent.load(std::memory_order_acquire); }

    /// What the system said first of a connection that broke while it was written; None for one that the peer closed in
    /// peace. [thread: any]
    SocketError GetFailure() const;

private:
    SocketTransfer SendPart(SystemSocket& socket, const char* data, std::size_t size);
    SocketTransfer SendLocked(SystemSocket& socket, const char* data, std::size_t size);
    bool FlushLocked(SystemSocket& socket);
    void NoteUnsent();

    std::mutex m_senders;       // held by the thread that waits to send; the socket's thread never takes it
    mutable std::mutex m_lock;  // held for one step, never while waiting
    std::vector<char> m_unsent; // under m_lock
    SocketError m_failure = SocketError::None; // under m_lock
    bool m_blockOpen = false; // part of a waiting call's bytes is sent: nothing may come between; under m_lock
    std::atomic<bool> m_hasUnsent{false}; // m_unsent holds bytes that may be sent; written under m_lock
};
