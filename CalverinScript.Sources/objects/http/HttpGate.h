#pragma once

#include <QByteArray>
#include <QNetworkProxy>
#include <QObject>
#include <QTcpServer>

class HttpPassage;

/// The way of one HTTP client to its servers. The network library reads headers as long as they come, without bound and
/// without looking up, and nothing that it offers ends that. So its connections pass through here, where what a server
/// sends is counted, and a connection can be cut.
///
/// A SOCKS server at a loopback port of the system's choice, which opens when it is first needed. It lets in who has
/// the password, which is made for each gate, so nobody else on the computer passes. With the gate all its connections
/// end. [all: http]
class HttpGate : public QObject {
    Q_OBJECT

public:
    HttpGate();

    /// The way through the gate; no proxy when the gate cannot be opened.
    QNetworkProxy GetProxy();

Q_SIGNALS:
    /// @param unanswered what the server has sent on this connection since the client has said something, in bytes.
    void SignalServerSpoke(HttpPassage* passage, qint64 unanswered);

private Q_SLOTS:
    void SlotNewConnection();
    void SlotAcceptFailed();

private:
    void LetIn(QTcpSocket* client);

    QTcpServer m_listener;
    const QByteArray m_password;
};

/// Leads requests through the gate, unless the host process has a proxy for them. What the computer's environment names
/// as proxy does not count.   [http]
class HttpGateRoute : public QNetworkProxyFactory {
public:
    /// @param gate borrowed as long as requests are made.
    explicit HttpGateRoute(HttpGate& gate);
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery& query) override;

private:
    HttpGate& m_gate;
};
