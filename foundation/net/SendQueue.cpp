#include "SendQueue.h"

#include "SocketWait.h"

bool SendQueue::Send(SystemSocket& socket, const char* data, std::size_t size) {
    const std::lock_guard<std::mutex> sender(m_senders);
    bool waited = false;
    std::size_t done = 0;
    while (done < size) {
        const SocketTransfer part = SendPart(socket, data + done, size - done);
        done += part.bytes;
        if (part.error == SocketError::None)
            continue;
        if (part.error != SocketError::WouldBlock)
            return waited || done > 0;
        waited = true;
        if (!WaitUntilWritable(socket))
            return false;
    }
    return true;
}

SocketTransfer SendQueue::SendPart(SystemSocket& socket, const char* data, std::size_t size) {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (!m_blockOpen && !FlushLocked(socket))
        return {0, SocketError::WouldBlock};
    const SocketTransfer part = SendLocked(socket, data, size);
    if (part.error != SocketError::WouldBlock)
        m_blockOpen = part.error == SocketError::None && part.bytes < size;
    NoteUnsent();
    return part;
}

// That nothing can be sent any more says only that the connection is over.
SocketTransfer SendQueue::SendLocked(SystemSocket& socket, const char* data, std::size_t size) {
    const SocketTransfer part = socket.Send(data, size);
    const bool broke = part.error != SocketError::WouldBlock && part.error != SocketError::ShutDown;
    if (broke && m_failure == SocketError::None)
        m_failure = part.error;
    return part;
}

SocketError SendQueue::GetFailure() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_failure;
}

bool SendQueue::SendWithoutWaiting(SystemSocket& socket, const char* data, std::size_t size) {
    const std::lock_guard<std::mutex> guard(m_lock);
    SocketTransfer part;
    if (!m_blockOpen && FlushLocked(socket))
        part = SendLocked(socket, data, size);
    if (part.error != SocketError::None && part.error != SocketError::WouldBlock)
        return false;
    if (!m_unsent.empty() && m_unsent.size() + size > kMostUnsent)
        return false;
    m_unsent.insert(m_unsent.end(), data + part.bytes, data + size);
    NoteUnsent();
    return true;
}

void SendQueue::Flush(SystemSocket& socket) {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (!m_blockOpen)
        FlushLocked(socket);
}

// True when nothing waits any more. A broken connection takes all: its reader tells of the end.
bool SendQueue::FlushLocked(SystemSocket& socket) {
    std::size_t done = 0;
    SocketTransfer part;
    while (done < m_unsent.size() && part.error == SocketError::None) {
        part = SendLocked(socket, m_unsent.data() + done, m_unsent.size() - done);
        done += part.bytes;
    }
    if (part.error != SocketError::None && part.error != SocketError::WouldBlock)
        done = m_unsent.size();
    m_unsent.erase(m_unsent.begin(), m_unsent.begin() + static_cast<std::ptrdiff_t>(done));
    NoteUnsent();
    return m_unsent.empty();
}

void SendQueue::NoteUnsent() {
    m_hasUnsent.store(!m_unsent.empty() && !m_blockOpen, std::memory_order_release);
}
