#include "HttpGate.h"

#include <chrono>
#include <memory>

#include <QPointer>
#include <QTimer>
#include <QUuid>

#include "HttpPassage.h"
#include "RunWithinMemory.h"

namespace {

constexpr std::chrono::milliseconds kAcceptPause(100);

QByteArray User() {
    return QByteArrayLiteral("gate");
}

} // namespace

HttpGate::HttpGate()
    : m_password(QUuid::createUuid().toByteArray(QUuid::Id128)) {
    m_listener.setProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    connect(&m_listener, &QTcpServer::newConnection, this, &HttpGate::SlotNewConnection);
    connect(&m_listener, &QTcpServer::acceptError, this, &HttpGate::SlotAcceptFailed);
}

/// Names stay the business of the network library, which tells more about those that it does not find.
QNetworkProxy HttpGate::GetProxy() {
    if (!m_listener.isListening() && !m_listener.listen(QHostAddress::LocalHost))
        return QNetworkProxy(QNetworkProxy::NoProxy);
    QNetworkProxy proxy(QNetworkProxy::Socks5Proxy, QStringLiteral("127.0.0.1"), m_listener.serverPort(),
                        QString::fromLatin1(User()), QString::fromLatin1(m_password));
    proxy.setCapabilities(QNetworkProxy::TunnelingCapability);
    return proxy;
}

void HttpGate::SlotNewConnection() {
    while (QTcpSocket* const client = m_listener.nextPendingConnection()) {
        const QPointer<QTcpSocket> held(client);
        if (!RunWithinMemory([=] { LetIn(client); }))
            delete held.data();
    }
}

void HttpGate::LetIn(QTcpSocket* client) {
    auto passage = std::make_unique<HttpPassage>(client, User(), m_password, this);
    connect(passage.get(), &HttpPassage::SignalServerSpoke, this, &HttpGate::SignalServerSpoke);
    static_cast<void>(passage.release()); // it deletes itself
}

/// Without a free descriptor the listener pauses. There will be one again.
void HttpGate::SlotAcceptFailed() {
    QTimer::singleShot(kAcceptPause, &m_listener, &QTcpServer::resumeAccepting);
}

HttpGateRoute::HttpGateRoute(HttpGate& gate)
    : m_gate(gate) {}

QList<QNetworkProxy> HttpGateRoute::queryProxy(const QNetworkProxyQuery& query) {
    if (!usesSystemConfiguration()) {
        const QList<QNetworkProxy> proxies = proxyForQuery(query);
        if (!proxies.isEmpty() && proxies.first().type() != QNetworkProxy::NoProxy)
            return proxies;
    }
    return {m_gate.GetProxy()};
}
