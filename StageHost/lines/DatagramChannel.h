#pragma once

#include <memory>

#include <QSocketNotifier>

#include "Channel.h"
#include "LineCalls.h"

namespace stagehost {

/// A UDP socket of its own that speaks with one other side.   [host main]
class DatagramChannel : public Channel, public std::enable_shared_from_this<DatagramChannel> {
public:
    /// @return null, and why.
    static std::shared_ptr<DatagramChannel> To(const NetAddress& address, QString& problem);
    ~DatagramChannel() override { Close(); }

    /// A datagram that the system does not take is lost, as datagrams are.
    void Send(const QByteArray& bytes) override;
    void Close() override;
    void SetReading(bool reads) override;

private:
    explicit DatagramChannel(int descriptor);

    void ReadyToRead();
    void Note(const IoResult& result);

    int m_descriptor;
    QSocketNotifier* m_readable; ///< lets go of itself
};

/// The largest datagram of IPv4, in bytes: 65535 without the headers of IP and UDP.
inline constexpr std::size_t kLargestDatagram = 65507;

} // namespace stagehost
