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
    , socket_(socket)
    , projector_(projector)
    , options_(options)
    , trace_(std::move(trace)) {
    socket_->setParent(this);
    socket_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    pace_.setSingleShot(true);
    idle_.setSingleShot(true);
    idle_.setInterval(options_.idle);
    connect(socket_, &QTcpSocket::readyRead, this, &Connection::Read);
    connect(socket_, &QTcpSocket::disconnected, this, &QObject::deleteLater);
    connect(&pace_, &QTimer::timeout, this, &Connection::SendNext);
    connect(&idle_, &QTimer::timeout, this, &Connection::Close);
    Greet();
}

void Connection::Greet() {
    idle_.start();
    if (options_.password.isEmpty()) {
        Queue("PJLINK 0\r");
        return;
    }
    const QByteArray random = RandomDigits();
    digest_ = Digest(random, options_.password);
    Queue("PJLINK 1 " + random + '\r');
}

void Connection::Read() {
    idle_.start();
    received_ += socket_->readAll();
    for (int end = received_.indexOf('\r'); end >= 0; end = received_.indexOf('\r')) {
        const QByteArray line = received_.left(end);
        received_.remove(0, end + 1);
        Take(line);
    }
    if (received_.size() > digest_.size() + kLongestLine)
        Close();
}

void Connection::Take(QByteArray line) {
    if (socket_->state() != QAbstractSocket::ConnectedState)
        return;
    trace_(line);
    if (!MayPass(line)) {
        Queue("PJLINK ERRA\r");
        Close();
        return;
    }
    const QByteArray answer = Answer(projector_, line);
    if (answer.isEmpty())
        return;
    Queue(answer);
    if (++answered_ == options_.dropAfter)
        Close();
}

/// The first command carries the digest; those behind it need none.
bool Connection::MayPass(QByteArray& line) {
    if (digest_.isEmpty())
        return true;
    if (!line.startsWith(digest_))
        return false;
    line.remove(0, digest_.size());
    digest_.clear();
    return true;
}

void Connection::Queue(const QByteArray& answer) {
    if (options_.split) {
        for (const char byte : answer)
            waiting_.enqueue(QByteArray(1, byte));
    } else {
        waiting_.enqueue(answer);
    }
    if (!pace_.isActive())
        options_.slow > 0 ? SendAfter(options_.slow) : SendNext();
}

void Connection::SendNext() {
    if (waiting_.isEmpty())
        return;
    socket_->write(waiting_.dequeue());
    socket_->flush();
    if (!waiting_.isEmpty())
        SendAfter(options_.split ? kBetweenBytes : options_.slow);
}

void Connection::SendAfter(int milliseconds) {
    pace_.start(milliseconds);
}

/// Sends what waits, at once, and then closes.
void Connection::Close() {
    while (!waiting_.isEmpty())
        socket_->write(waiting_.dequeue());
    socket_->disconnectFromHost();
}

} // namespace projector
