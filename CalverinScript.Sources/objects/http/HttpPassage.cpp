#include "HttpPassage.h"

#include <QNetworkProxy>
#include <QtEndian>

namespace {

constexpr qint64 kAhead = 65536; ///< bytes that wait here for each side

// RFC 1928 and RFC 1929
constexpr char kVersion = 5;
constexpr char kByPassword = 2;
constexpr char kPasswordVersion = 1;
constexpr char kConnect = 1;
constexpr char kAddress4 = 1;
constexpr char kAddress6 = 4;
constexpr int kAddressAt = 4;
constexpr int kAddress4Size = 4;
constexpr int kAddress6Size = 16;
constexpr int kPortSize = 2;
constexpr char kSucceeded = 0;
constexpr char kNotAllowed = 2;
constexpr char kUnreachable = 3;
constexpr char kRefused = 5;

/// A text with its length before it.
QByteArray Counted(const QByteArray& text) {
    return QByteArray(1, static_cast<char>(text.size())) + text;
}

/// Sending may find the other side gone, and then this one is closed too.
qint64 Forward(QTcpSocket& from, QTcpSocket& to) {
    qint64 moved = 0;
    while (from.isOpen() && to.state() == QAbstractSocket::ConnectedState && from.bytesAvailable() > 0 &&
           to.bytesToWrite() < kAhead) {
        moved += to.write(from.read(kAhead));
        to.flush();
    }
    return moved;
}

/// What came before the end still goes out.
void ForwardTheRest(QTcpSocket& from, QTcpSocket& to) {
    if (to.state() != QAbstractSocket::ConnectedState)
        return;
    if (from.isOpen())
        to.write(from.readAll());
    to.disconnectFromHost();
}

} // namespace

HttpPassage::HttpPassage(QTcpSocket* clientSocket, const QByteArray& user, const QByteArray& password, QObject* parent)
    : QObject(parent)
    , m_client(clientSocket)
    , m_credentials(kPasswordVersion + Counted(user) + Counted(password)) {
    m_client->setParent(this);
    m_client->setReadBufferSize(kAhead);
    m_client->setSocketOption(QAbstractSocket::SendBufferSizeSocketOption, kAhead);
    m_client->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_server.setProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    m_server.setReadBufferSize(kAhead);
    connect(m_client, &QTcpSocket::readyRead, this, &HttpPassage::SlotClientSpoke);
    connect(m_client, &QTcpSocket::bytesWritten, this, &HttpPassage::SlotServerSpoke);
    connect(m_client, &QTcpSocket::disconnected, this, &HttpPassage::SlotClientGone);
    connect(&m_server, &QTcpSocket::connected, this, &HttpPassage::SlotServerThere);
    connect(&m_server, &QTcpSocket::readyRead, this, &HttpPassage::SlotServerSpoke);
    connect(&m_server, &QTcpSocket::bytesWritten, this, &HttpPassage::SlotClientSpoke);
    connect(&m_server, &QTcpSocket::disconnected, this, &HttpPassage::SlotServerGone);
    connect(&m_server, &QTcpSocket::errorOccurred, this, &HttpPassage::SlotServerFailed);
    SlotClientSpoke();
}

HttpPassage::~HttpPassage() {
    StopListening();
}

void HttpPassage::Cut() {
    StopListening();
    m_client->abort();
    m_server.abort();
    deleteLater();
}

/// Sockets that are closed here tell of it, which nobody may hear any more.
void HttpPassage::StopListening() {
    m_client->disconnect(this);
    m_server.disconnect(this);
}

void HttpPassage::SlotClientSpoke() {
    if (m_state == State::Greeting && !ReadGreeting())
        return;
    if (m_state == State::Password && !ReadPassword())
        return;
    if (m_state == State::Address && !ReadAddress())
        return;
    if (m_state == State::Open && m_client->bytesAvailable() > 0)
        ForwardRequest();
}

/// What a server that has gone can hear no more is dropped here:
/// a connection that is closed over unread bytes is reset.
void HttpPassage::ForwardRequest() {
    m_clientHasSpoken = true;
    if (Forward(*m_client, m_server) > 0)
        m_unanswered = 0;
    if (m_server.state() != QAbstractSocket::UnconnectedState)
        return;
    m_client->readAll();
    SlotServerGone();
}

void HttpPassage::SlotServerSpoke() {
    if (m_state != State::Open)
        return;
    const qint64 moved = Forward(m_server, *m_client);
    m_unanswered += moved;
    if (moved > 0)
        Q_EMIT SignalServerSpoke(this, m_unanswered);
}

bool HttpPassage::Peek(int size, QByteArray& bytes) {
    bytes = m_client->peek(size);
    return bytes.size() == size;
}

/// The methods that the client knows: by password must be among them.
bool HttpPassage::ReadGreeting() {
    QByteArray greeting;
    if (!Peek(2, greeting))
        return false;
    const bool speaksIt = greeting[0] == kVersion;
    if (speaksIt && !Peek(2 + static_cast<unsigned char>(greeting[1]), greeting))
        return false;
    if (!speaksIt || greeting.indexOf(kByPassword, 2) < 0) {
        Cut();
        return false;
    }
    m_client->skip(greeting.size());
    m_client->write(QByteArray(1, kVersion) + kByPassword);
    m_state = State::Password;
    return true;
}

bool HttpPassage::ReadPassword() {
    QByteArray shown;
    if (!Peek(m_credentials.size(), shown))
        return false;
    if (shown != m_credentials) {
        Cut();
        return false;
    }
    m_client->skip(shown.size());
    m_client->write(QByteArray(1, kPasswordVersion) + kSucceeded);
    m_state = State::Address;
    return true;
}

/// Names were looked up before.
bool HttpPassage::ReadAddress() {
    QByteArray request;
    if (!Peek(kAddressAt, request))
        return false;
    const int size = request[kAddressAt - 1] == kAddress6 ? kAddress6Size : kAddress4Size;
    const bool known = size == kAddress6Size || request[kAddressAt - 1] == kAddress4;
    if (request[0] != kVersion || request[1] != kConnect || !known) {
        Cut();
        return false;
    }
    if (!Peek(kAddressAt + size + kPortSize, request))
        return false;
    m_client->skip(request.size());
    const char* const bytes = request.constData() + kAddressAt;
    const QHostAddress address = size == kAddress6Size ? QHostAddress(reinterpret_cast<const quint8*>(bytes))
                                                       : QHostAddress(qFromBigEndian<quint32>(bytes));
    m_state = State::Connecting;
    m_server.connectToHost(address, qFromBigEndian<quint16>(bytes + size));
    return true;
}

/// The address from which we have connected does not matter to the client.
void HttpPassage::Answer(char result) {
    m_client->write(QByteArray(1, kVersion) + result + '\0' + kAddress4 + QByteArray(kAddress4Size + kPortSize, '\0'));
}

void HttpPassage::SlotServerThere() {
    m_server.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_server.setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    Answer(kSucceeded);
    m_state = State::Open;
    SlotClientSpoke();
}

/// The client has a clock of its own for a server that does not answer, and tells of it by itself.
void HttpPassage::SlotServerFailed(QAbstractSocket::SocketError error) {
    if (m_state != State::Connecting || error == QAbstractSocket::SocketTimeoutError)
        return;
    const char elsewhere = error == QAbstractSocket::SocketAccessError ? kNotAllowed : kUnreachable;
    Answer(error == QAbstractSocket::ConnectionRefusedError ? kRefused : elsewhere);
    m_client->disconnectFromHost();
}

void HttpPassage::SlotClientGone() {
    if (m_server.state() == QAbstractSocket::ConnectedState)
        ForwardTheRest(*m_client, m_server);
    else
        m_server.abort();
    EndWhenBothAreGone();
}

void HttpPassage::SlotServerGone() {
    if (m_state == State::Open && !m_clientHasSpoken && m_client->state() == QAbstractSocket::ConnectedState)
        return;
    ForwardTheRest(m_server, *m_client);
    EndWhenBothAreGone();
}

void HttpPassage::EndWhenBothAreGone() {
    if (m_client->state() == QAbstractSocket::UnconnectedState && m_server.state() == QAbstractSocket::UnconnectedState)
        deleteLater();
}
