#include "Connection.h"

#include <QRandomGenerator>

#include "Protocol.h"

namespace projector {

namespace {

constexpr int kBetweenBytes = 1; // ms

QByteArray RandomDigits() {
    return QByteArray::number(QRandomGenerator::global()->generate(), 16).rightJustified(8, '0');
}

} // namespace

Connection::Connection(QTcpSocket* socket, Projector& projector, const Options& options,
                       std::function<void(const QByteArray&)> trace, QObject* parent)
    : QObject(parent)
    , m_socket(socket)
    , m_projector(projector)
    , m_options(options)
    , m_trace(std::move(trace)) {
    m_socket->setParent(this);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_pace.setSingleShot(true);
    m_idle.setSingleShot(true);
    m_idle.setInterval(m_options.idle);
    connect(m_socket, &QTcpSocket::readyRead, this, &Connection::Read);
    connect(m_socket, &QTcpSocket::disconnected, this, &QObject::deleteLater);
    connect(&m_pace, &QTimer::timeout, this, &Connection::SendNext);
    connect(&m_idle, &QTimer::timeout, this, &Connection::Close);
    Greet();
}

void Connection::Greet() {
    m_idle.start();
    if (m_options.password.isEmpty()) {
        Queue("PJLINK 0\r");
        return;
    }
    const QByteArray random = RandomDigits();
    m_digest = Digest(random, m_options.password);
    Queue("PJLINK 1 " + random + '\r');
}

void Connection::Read() {
    m_idle.start();
    m_received += m_socket->readAll();
    for (int end = m_received.indexOf('\r'); end >= 0; end = m_received.indexOf('\r')) {
        const QByteArray line = m_received.left(end);
        m_received.remove(0, end + 1);
        Take(line);
    }
    if (m_received.size() > m_digest.size() + kLongestLine)
        Close();
}

void Connection::Take(QByteArray line) {
    if (m_socket->state() != QAbstractSocket::ConnectedState)
        return;
    m_trace(line);
    if (!MayPass(line)) {
        Queue("PJLINK ERRA\r");
        Close();
        return;
    }
    const QByteArray answer = Answer(m_projector, line);
    if (answer.isEmpty())
        return;
    Queue(answer);
    if (++m_answered == m_options.dropAfter)
        Close();
}

/// The first command carries the digest; those behind it need none.
bool Connection::MayPass(QByteArray& line) {
    if (m_digest.isEmpty())
        return true;
    if (!line.startsWith(m_digest))
        return false;
    line.remove(0, m_digest.size());
    m_digest.clear();
    return true;
}

void Connection::Queue(const QByteArray& answer) {
    if (m_options.split) {
        for (const char byte : answer)
            m_waiting.enqueue(QByteArray(1, byte));
    } else {
        m_waiting.enqueue(answer);
    }
    if (!m_pace.isActive())
        m_options.slow > 0 ? SendAfter(m_options.slow) : SendNext();
}

void Connection::SendNext() {
    if (m_waiting.isEmpty())
        return;
    m_socket->write(m_waiting.dequeue());
    m_socket->flush();
    if (!m_waiting.isEmpty())
        SendAfter(m_options.split ? kBetweenBytes : m_options.slow);
}

void Connection::SendAfter(int milliseconds) {
    m_pace.start(milliseconds);
}

/// Sends what waits, at once, and then closes.
void Connection::Close() {
    while (!m_waiting.isEmpty())
        m_socket->write(m_waiting.dequeue());
    m_socket->disconnectFromHost();
}

} // namespace projector
