#include "ProjectorProcess.h"

#include <QHostAddress>

#include "Waits.h"

bool ProjectorProcess::Start(const QStringList& words) {
    m_output.clear();
    m_process.start(QStringLiteral(EXAMPLES_BIN "/projector"), words);
    while (!m_output.contains('\n')) {
        if (!m_process.waitForReadyRead(kLongest))
            return false;
        m_output += m_process.readAllStandardOutput();
    }
    m_port = static_cast<quint16>(m_output.mid(m_output.indexOf(':') + 1, m_output.indexOf('\n')).trimmed().toUInt());
    return m_port != 0;
}

int ProjectorProcess::Run(const QStringList& words) {
    m_process.start(QStringLiteral(EXAMPLES_BIN "/projector"), words);
    return ExitCode();
}

int ProjectorProcess::Terminate() {
    m_process.terminate();
    return ExitCode();
}

int ProjectorProcess::ExitCode() {
    const bool ended = m_process.state() == QProcess::NotRunning || m_process.waitForFinished(kLongest);
    return ended && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

void ProjectorProcess::Kill() {
    m_process.kill();
    m_process.waitForFinished(kLongest);
}

QByteArray ProjectorProcess::Output() {
    m_process.waitForReadyRead(0);
    return m_output += m_process.readAllStandardOutput();
}

ProjectorClient::ProjectorClient(quint16 port) {
    m_socket.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    m_socket.waitForConnected(kLongest);
}

void ProjectorClient::Say(const QByteArray& bytes) {
    m_socket.write(bytes);
    m_socket.flush();
}

QByteArray ProjectorClient::Line() {
    m_pieces = 0;
    while (!m_received.contains('\r')) {
        if (m_socket.bytesAvailable() == 0 && !m_socket.waitForReadyRead(kLongest))
            return {};
        m_received += m_socket.readAll();
        ++m_pieces;
    }
    const QByteArray line = m_received.left(m_received.indexOf('\r'));
    m_received.remove(0, line.size() + 1);
    return line;
}

QByteArray ProjectorClient::Ask(const QByteArray& command) {
    Say(command + '\r');
    return Line();
}

bool ProjectorClient::IsSentAway() {
    return m_socket.state() == QAbstractSocket::UnconnectedState || m_socket.waitForDisconnected(kLongest);
}
