#include "Server.h"

#include "Connection.h"

namespace projector {

Server::Server(Options options)
    : m_options(std::move(options))
    , m_projector(m_options.description) {
    connect(&m_listener, &QTcpServer::newConnection, this, &Server::Welcome);
}

bool Server::Listen() {
    return m_listener.listen(QHostAddress::LocalHost, m_options.port);
}

void Server::Welcome() {
    while (QTcpSocket* socket = m_listener.nextPendingConnection())
        new Connection(
            socket, m_projector, m_options, [this](const QByteArray& line) { m_trace(line); }, this);
}

} // namespace projector
