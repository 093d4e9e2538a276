#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "SystemSocket.h"

/// One datagram of a burst. The bytes belong to the reader and last until its next Receive.
struct Datagram {
    const char* data;
    std::size_t length;
    SocketAddress source;
    bool truncated; ///< it was longer than the reader's size; the rest is lost
};

/// Takes datagrams off a socket in bursts, with one call of the system for each burst.   [thread: one at a time]
class DatagramReader {
public:
    /// How many datagrams a burst has at most.
    static constexpr std::size_t kBurst = 32;

    DatagramReader();
    ~DatagramReader();
    DatagramReader(const DatagramReader&) = delete;
    DatagramReader& operator=(const DatagramReader&) = delete;

    /// The size of each datagram's place in bytes; what was received before is gone.
    void SetSize(std::size_t size);
    std::size_t GetSize() const;

    /// Takes what is there, without waiting. @return WouldBlock when nothing is.
    SocketError Receive(const SystemSocket& socket);

    /// The datagrams of the last Receive, in the order in which they came.
    std::size_t GetCount() const;
    Datagram Get(std::size_t position) const;

private:
    struct Places;
    std::unique_ptr<Places> m_places;
};
