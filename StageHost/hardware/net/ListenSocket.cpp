#include "ListenSocket.h"

#include <array>

namespace stagehost {

namespace {

constexpr int kPerTurn = 1000; // then other events of the thread have a turn, whatever comes in
constexpr std::size_t kLongestDatagram = 2048;
constexpr int kReceiveBuffer = 4 * 1024 * 1024;

} // namespace

ListenSocket::ListenSocket(Take take)
    : m_take(std::move(take)) {
    connect(&m_socket, &QUdpSocket::readyRead, this, &ListenSocket::Read);
}

QString ListenSocket::Bind(const QHostAddress& address, std::uint16_t port) {
    if (!m_socket.bind(address, port, QUdpSocket::ShareAddress | QUdpSocket::ReuseAddressHint))
        return m_socket.errorString();
    m_socket.setSocketOption(QAbstractSocket::ReceiveBufferSizeSocketOption, kReceiveBuffer);
    return {};
}

QString ListenSocket::Join(const QHostAddress& group, const QNetworkInterface& networkInterface) {
    const bool joined = networkInterface.isValid() ? m_socket.joinMulticastGroup(group, networkInterface)
                                                   : m_socket.joinMulticastGroup(group);
    return joined ? QString() : m_socket.errorString();
}

void ListenSocket::Leave(const QHostAddress& group, const QNetworkInterface& networkInterface) {
    if (networkInterface.isValid())
        m_socket.leaveMulticastGroup(group, networkInterface);
    else
        m_socket.leaveMulticastGroup(group);
}

void ListenSocket::Send(const std::vector<std::uint8_t>& packet, const QHostAddress& target, std::uint16_t port) {
    m_socket.writeDatagram(reinterpret_cast<const char*>(packet.data()), static_cast<qint64>(packet.size()), target,
                           port);
}

void ListenSocket::Read() {
    std::array<char, kLongestDatagram> bytes;
    QHostAddress sender;
    for (int count = 0; count < kPerTurn; ++count) {
        const qint64 size = m_socket.readDatagram(bytes.data(), bytes.size(), &sender);
        if (size < 0)
            return;
        m_take({reinterpret_cast<const std::uint8_t*>(bytes.data()), static_cast<std::size_t>(size)}, sender);
    }
}

} // namespace stagehost
