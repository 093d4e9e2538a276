#include "ProjectorProcess.h"

#include <QHostAddress>

#include "Waits.h"

bool ProjectorProcess::Start(const QStringList& words) {
    output_.clear();
    process_.start(QStringLiteral(EXAMPLES_BIN "/projector"), words);
    while (!output_.contains('\n')) {
        if (!process_.waitForReadyRead(kLongest))
            return false;
        output_ += process_.readAllStandardOutput();
    }
    port_ = static_cast<quint16>(output_.mid(output_.indexOf(':') + 1, output_.indexOf('\n')).trimmed().toUInt());
    return port_ != 0;
}

int ProjectorProcess::Run(const QStringList& words) {
    process_.start(QStringLiteral(EXAMPLES_BIN "/projector"), words);
    return ExitCode();
}

int ProjectorProcess::Terminate() {
    process_.terminate();
    return ExitCode();
}

int ProjectorProcess::ExitCode() {
    const bool ended = process_.state() == QProcess::NotRunning || process_.waitForFinished(kLongest);
    return ended && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
}

void ProjectorProcess::Kill() {
    process_.kill();
    process_.waitForFinished(kLongest);
}

QByteArray ProjectorProcess::Output() {
    process_.waitForReadyRead(0);
    return output_ += process_.readAllStandardOutput();
}

ProjectorClient::ProjectorClient(quint16 port) {
    socket_.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    socket_.waitForConnected(kLongest);
}

void ProjectorClient::Say(const QByteArray& bytes) {
    socket_.write(bytes);
    socket_.flush();
}

QByteArray ProjectorClient::Line() {
    pieces_ = 0;
    while (!received_.contains('\r')) {
        if (socket_.bytesAvailable() == 0 && !socket_.waitForReadyRead(kLongest))
            return {};
        received_ += socket_.readAll();
        ++pieces_;
    }
    const QByteArray line = received_.left(received_.indexOf('\r'));
    received_.remove(0, line.size() + 1);
    return line;
}

QByteArray ProjectorClient::Ask(const QByteArray& command) {
    Say(command + '\r');
    return Line();
}

bool ProjectorClient::IsSentAway() {
    return socket_.state() == QAbstractSocket::UnconnectedState || socket_.waitForDisconnected(kLongest);
}
