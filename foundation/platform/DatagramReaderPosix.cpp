#include "DatagramReader.h"

#include <array>
#include <cerrno>

#include <netinet/in.h>
#include <sys/socket.h>

struct DatagramReader::Places {
    std::size_t size = 0;
    std::size_t count = 0;
    std::unique_ptr<char[]> bytes; // kBurst places of size; memory that no datagram reached is never touched
    std::array<mmsghdr, kBurst> headers{};
    std::array<iovec, kBurst> vectors{};
    std::array<sockaddr_in, kBurst> sources{};

    void Prepare(std::size_t place);
};

void DatagramReader::Places::Prepare(std::size_t place) {
    vectors[place] = {bytes.get() + place * size, size};
    msghdr& header = headers[place].msg_hdr;
    header = {};
    header.msg_name = &sources[place];
    header.msg_namelen = sizeof sources[place];
    header.msg_iov = &vectors[place];
    header.msg_iovlen = 1;
}

DatagramReader::DatagramReader()
    : m_places(std::make_unique<Places>()) {}

DatagramReader::~DatagramReader() = default;

void DatagramReader::SetSize(std::size_t size) {
    m_places->size = size;
    m_places->count = 0;
    m_places->bytes.reset(new char[kBurst * size]); // not zeroed
    for (std::size_t place = 0; place < kBurst; ++place)
        m_places->Prepare(place);
}

std::size_t DatagramReader::GetSize() const {
    return m_places->size;
}

SocketError DatagramReader::Receive(const SystemSocket& socket) {
    for (std::size_t place = 0; place < m_places->count; ++place)
        m_places->Prepare(place); // the last burst wrote into these
    int received = 0;
    do
        received =
            recvmmsg(static_cast<int>(socket.GetHandle()), m_places->headers.data(), kBurst, MSG_DONTWAIT, nullptr);
    while (received < 0 && errno == EINTR);
    m_places->count = received < 0 ? 0 : static_cast<std::size_t>(received);
    return received < 0 ? SocketErrorFromSystem(errno) : SocketError::None;
}

std::size_t DatagramReader::GetCount() const {
    return m_places->count;
}

Datagram DatagramReader::Get(std::size_t position) const {
    const mmsghdr& header = m_places->headers.at(position);
    const sockaddr_in& source = m_places->sources.at(position);
    return {static_cast<const char*>(m_places->vectors.at(position).iov_base),
            header.msg_len,
            {source.sin_addr.s_addr, source.sin_port},
            (header.msg_hdr.msg_flags & MSG_TRUNC) != 0};
}
