#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QObject>
#include <QTcpSocket>

/// One connection of a client through an HttpGate: the client asks by SOCKS 5 (RFC 1928) with user
/// and password (RFC 1929), then bytes pass both ways as they come. Little is kept here: who reads
/// slowly slows the other side down. The end of one side is the end of the other, after all that
/// came before it. Only a client that has not spoken yet hears of the server's end when it does:
/// the network library takes an end right behind the answer of SOCKS for a failure of the proxy.
///
/// It deletes itself when both sides are gone.   [all: http]
class HttpPassage : public QObject {
    Q_OBJECT

public:
    /// @param client a connection that was accepted; becomes a child.
    HttpPassage(QTcpSocket* client, const QByteArray& user, const QByteArray& password, QObject* parent);
    ~HttpPassage() override;

    /// Ends both sides at once.
    void Cut();

Q_SIGNALS:
    /// More bytes came from the server. @param unanswered all that came since the client has said something.
    void SignalServerSpoke(HttpPassage* passage, qint64 unanswered);

private Q_SLOTS:
    void SlotClientSpoke();
    void SlotServerSpoke();
    void SlotClientGone();
    void SlotServerGone();
    void SlotServerThere();
    void SlotServerFailed(QAbstractSocket::SocketError error);

private:
    enum class State { Greeting, Password, Address, Connecting, Open };

    bool ReadGreeting();
    bool ReadPassword();
    bool ReadAddress();
    bool Peek(int size, QByteArray& bytes);
    void Answer(char result);
    void ForwardRequest();
    void StopListening();
    void EndWhenBothAreGone();

    QTcpSocket* const m_client; ///< child
    QTcpSocket m_server;
    const QByteArray m_credentials; ///< what the client has to show, as it travels
    State m_state = State::Greeting;
    bool m_clientHasSpoken = false; ///< to the server
    qint64 m_unanswered = 0;
};
