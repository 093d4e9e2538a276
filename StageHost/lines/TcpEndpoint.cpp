#include "TcpEndpoint.h"

#include <utility>

#include "StreamChannel.h"

namespace stagehost {

TcpEndpoint::~TcpEndpoint() {
    CloseAll();
    Drop();
    CloseLine(m_held);
}

QString TcpEndpoint::Open(const LinePlace& place) {
    NetAddress address;
    QString unknown = AddressOf(place, address);
    if (!unknown.isEmpty())
        return unknown;
    std::string problem;
    m_listener = ListenOn(address, problem);
    if (m_listener < 0)
        return QString::fromStdString(problem);
    m_place = place;
    m_place.port = LocalAddress(m_listener).port;
    WatchListener();
    return {};
}

void TcpEndpoint::WatchListener() {
    m_comes = std::make_unique<QSocketNotifier>(m_listener, QSocketNotifier::Read);
    QObject::connect(m_comes.get(), &QSocketNotifier::activated, m_comes.get(), [this] { Accept(); });
}

void TcpEndpoint::Accept() {
    NetAddress who;
    const int descriptor = AcceptFrom(m_listener, who);
    if (descriptor >= 0)
        Add(StreamChannel::Over(descriptor), TextOf({LineKind::Tcp, QString::fromStdString(who.host), who.port, {}}));
}

void TcpEndpoint::LetIn(bool lets) {
    if (m_comes)
        m_comes->setEnabled(lets);
}

void TcpEndpoint::Drop() {
    if (m_comes) {
        m_comes->setEnabled(false);
        m_comes.release()->deleteLater(); // perhaps from inside its own signal
    }
    CloseLine(std::exchange(m_listener, -1));
}

void TcpEndpoint::CloseDoor() {
    NetAddress address = LocalAddress(m_listener);
    Drop();
    std::string problem;
    m_held = HoldPort(address, problem);
}

QString TcpEndpoint::DoReturn() {
    if (m_held < 0 || !Listen(m_held))
        return QStringLiteral("the port %1 has been taken").arg(m_place.port);
    m_listener = std::exchange(m_held, -1);
    WatchListener();
    return {};
}

} // namespace stagehost
