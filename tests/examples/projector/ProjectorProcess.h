#pragma once

#include <QProcess>
#include <QStringList>
#include <QTcpSocket>

/// The projector program as people use it; killed with this object. All waits end after a minute.
class ProjectorProcess {
public:
    ProjectorProcess() = default;
    ~ProjectorProcess() { Kill(); }
    Q_DISABLE_COPY_MOVE(ProjectorProcess)

    /// Starts it and waits until it listens. @return false when it does not.
    bool Start(const QStringList& words);
    /// Runs it to its end. @return its exit code, -1 when there is none.
    int Run(const QStringList& words);
    /// Asks it to end, as Ctrl-C does. @return its exit code, -1 when there is none.
    int Terminate();
    /// Ends it as a broken mains does.
    void Kill();

    quint16 Port() const { return port_; }
    QByteArray Output(); ///< all that it has printed so far
    QByteArray Errors() { return process_.readAllStandardError(); }

private:
    int ExitCode();

    QProcess process_;
    QByteArray output_;
    quint16 port_ = 0;
};

/// A client of a projector that says what it is told.
class ProjectorClient {
public:
    explicit ProjectorClient(quint16 port);

    void Say(const QByteArray& bytes);
    /// @return the next line without its CR; empty when the connection has been closed before.
    QByteArray Line();
    /// @return what Line gives after this command.
    QByteArray Ask(const QByteArray& command);
    /// @return whether the projector closes the connection; waits for it.
    bool IsSentAway();
    /// How many times data arrived while the last line was read.
    int Pieces() const { return pieces_; }

private:
    QTcpSocket socket_;
    QByteArray received_;
    int pieces_ = 0;
};
