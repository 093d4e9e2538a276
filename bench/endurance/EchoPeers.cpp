#include "EchoPeers.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QUdpSocket>

namespace {

void EchoLines(QTcpSocket& socket, Faults& faults) {
    while (socket.canReadLine()) {
        const QByteArray line = socket.readLine();
        if (faults.Strike())
            return socket.abort();
        socket.write(line);
    }
}

/// One answer for each empty line, which ends a request that has no body.
void AnswerPages(QTcpSocket& socket, Faults& faults) {
    while (socket.canReadLine()) {
        if (!socket.readLine().trimmed().isEmpty())
            continue;
        if (faults.Strike())
            return socket.abort();
        socket.write("HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\na page");
    }
}

void EchoDatagrams(QUdpSocket& socket, Faults& faults) {
    while (socket.hasPendingDatagrams()) {
        QByteArray bytes(static_cast<int>(socket.pendingDatagramSize()), '\0');
        QHostAddress sender;
        quint16 port = 0;
        socket.readDatagram(bytes.data(), bytes.size(), &sender, &port);
        if (!faults.Strike())
            socket.writeDatagram(bytes, sender, port);
    }
}

/// Listens, and answers each connection with that.
template <typename Answer>
void Serve(QTcpServer& server, Faults& faults, Answer answer) {
    QObject::connect(&server, &QTcpServer::newConnection, &server, [&server, &faults, answer] {
        while (QTcpSocket* socket = server.nextPendingConnection()) {
            QObject::connect(socket, &QTcpSocket::readyRead, socket,
                             [socket, &faults, answer] { answer(*socket, faults); });
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
    server.listen(QHostAddress::LocalHost);
}

} // namespace

EchoPeers::EchoPeers(Faults& faults)
    : m_faults(faults) {
    start();
}

EchoPeers::~EchoPeers() {
    quit();
    wait();
}

void EchoPeers::run() {
    QTcpServer lines;
    QTcpServer pages;
    QUdpSocket datagrams;
    Serve(lines, m_faults, &EchoLines);
    Serve(pages, m_faults, &AnswerPages);
    QObject::connect(&datagrams, &QUdpSocket::readyRead, &datagrams,
                     [this, &datagrams] { EchoDatagrams(datagrams, m_faults); });
    datagrams.bind(QHostAddress(QHostAddress::LocalHost), 0);
    m_ports.set_value({lines.serverPort(), datagrams.localPort(), pages.serverPort()});
    exec();
}
