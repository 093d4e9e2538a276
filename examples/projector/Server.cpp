#include "Server.h"

#include "Connection.h"

namespace projector {

Server::Server(Options options)
    : options_(std::move(options))
    , projector_(options_.description) {
    connect(&listener_, &QTcpServer::newConnection, this, &Server::Welcome);
}

bool Server::Listen() {
    return listener_.listen(QHostAddress::LocalHost, options_.port);
}

void Server::Welcome() {
    while (QTcpSocket* socket = listener_.nextPendingConnection())
        new Connection(
            socket, projector_, options_, [this](const QByteArray& line) { trace_(line); }, this);
}

} // namespace projector
