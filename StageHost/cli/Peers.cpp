#include "Peers.h"

#include <QDeadlineTimer>

#include "Output.h"

namespace stagehost {

namespace {

constexpr int kStartMs = 5000;
constexpr int kReadyMs = 2000; // for all of them together
constexpr int kEndMs = 2000;   // for all of them, since they are asked at once

QString EndText(const QProcess& process) {
    return process.exitStatus() == QProcess::NormalExit ? QStringLiteral("ended with %1").arg(process.exitCode())
                                                        : QStringLiteral("was ended by a signal");
}

} // namespace

QString Peers::Start(const Show& show) {
    for (const ShowPeer& peer : show.peers) {
        const QString problem = StartOne(show, peer);
        if (!problem.isEmpty())
            return QStringLiteral("peer %1: %2").arg(peer.name, problem);
    }
    WaitUntilReady();
    return {};
}

/// The first line that a peer prints says that it is ready; one that never prints is waited for in vain, and not long.
void Peers::WaitUntilReady() {
    const QDeadlineTimer deadline(kReadyMs);
    for (const auto& process : m_running) {
        while (!deadline.hasExpired() && process->state() == QProcess::Running && !process->canReadLine())
            process->waitForReadyRead(static_cast<int>(deadline.remainingTime()));
        QObject::connect(process.get(), &QProcess::readyReadStandardOutput, process.get(),
                         [&one = *process] { one.readAllStandardOutput(); });
        process->readAllStandardOutput();
    }
}

QString Peers::StartOne(const Show& show, const ShowPeer& peer) {
    m_running.push_back(std::make_unique<QProcess>());
    QProcess& process = *m_running.back();
    process.setWorkingDirectory(show.folder);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    const QString program = peer.run.first();
    process.start(program.contains(QLatin1Char('/')) ? show.Path(program) : program, peer.run.mid(1));
    if (!process.waitForStarted(kStartMs))
        return QStringLiteral("cannot start %1: %2").arg(program, process.errorString());
    QObject::connect(
        &process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &process,
        [&process, name = peer.name] { PrintProblem(QStringLiteral("peer %1: %2").arg(name, EndText(process))); });
    return {};
}

void Peers::End() {
    for (const auto& process : m_running) {
        process->disconnect();
        process->closeWriteChannel();
        process->terminate();
    }
    for (const auto& process : m_running) {
        if (process->state() != QProcess::NotRunning && !process->waitForFinished(kEndMs)) {
            process->kill();
            process->waitForFinished();
        }
    }
    m_running.clear();
}

} // namespace stagehost
