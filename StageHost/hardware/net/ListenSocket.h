#pragma once

#include <functional>

#include <QHostAddress>
#include <QNetworkInterface>
#include <QUdpSocket>

#include "PacketBytes.h"

namespace stagehost {

/// A UDP port that hands on its datagrams. Lives on one thread with events.
class ListenSocket : public QObject {
    Q_OBJECT

public:
    /// @param sender of the datagram; the bytes are borrowed for the call. Longer ones than any packet here
    /// are cut at 2048.
    using Take = std::function<void(PacketView bytes, const QHostAddress& sender)>;

    explicit ListenSocket(Take take);

    /// Shares the port with other programs, which hear the same groups. @return empty, or why that cannot be.
    QString Bind(const QHostAddress& address, std::uint16_t port);

    /// @param networkInterface one that is not valid leaves the choice to the system. @return as Bind.
    QString Join(const QHostAddress& group, const QNetworkInterface& networkInterface);
    void Leave(const QHostAddress& group, const QNetworkInterface& networkInterface);

    void Send(const std::vector<std::uint8_t>& packet, const QHostAddress& target, std::uint16_t port);

private:
    void Read();

    const Take m_take;
    QUdpSocket m_socket;
};

} // namespace stagehost
