#pragma once

#include <atomic>
#include <cstdint>

#include "SystemSocket.h"

/// Wakes the one thread that waits on sockets. A Set before the wait ends the wait at once: it is never lost. Several
/// Sets before the thread looks are one.
class SocketWake {
public:
    SocketWake() = default;
    ~SocketWake();
    SocketWake(const SocketWake&) = delete;
    SocketWake& operator=(const SocketWake&) = delete;

    /// Takes the descriptor that the wake needs; harmless when it has one. Before it, Set does nothing.
    /// @return false when the system has none left.   [thread: one at a time]
    bool Open();

    /// [thread: any]
    void Set();

    /// Forgets what was set.   [thread: the one that waits]
    void Reset();

    bool IsOpen() const { return m_handle >= 0; }
    int GetHandle() const { return m_handle; }

private:
    std::atomic<int> m_handle{-1}; // written once, by Open
};

/// What ended a wait. Failed: the system cannot wait on this socket.
struct SocketReadiness {
    bool woken = false; ///< the wake was set; it has been reset
    bool ready = false; ///< the socket can be read, written or has an error or an end to tell
    bool writable = false;
    bool failed = false;
};

/// What of a socket is waited for. An error or its end is always told.
enum class SocketInterest { Reading, Writing, Both };

/// Waits until a socket is ready for what is of interest or the wake is set, at most timeoutMs, kInfinite for ever.
/// A null socket waits for the wake alone. Nothing ready, woken or failed: the time is over.   [thread: who waits]
SocketReadiness WaitForSocket(const SystemSocket* socket, SocketInterest interest, SocketWake& wake,
                              std::uint32_t timeoutMs);

/// Waits without limit until a socket can be written, a connect on it has ended, or it was shut down. Any number of
/// threads may wait. @return false when the system cannot wait on it.   [thread: any]
bool WaitUntilWritable(const SystemSocket& socket);
