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

    quint16 Port() const { return m_port; }
    QByteArray Output(); ///< all that it has printed so far
    QByteArray Errors() { return m_process.readAllStandardError(); }

private:
    int ExitCode();

    QProcess m_process;
    QByteArray m_output;
    quint16 m_port = 0;
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
    int Pieces() const { return m_pieces; }

private:
    QTcpSocket m_socket;
    QByteArray m_received;
    int m_pieces = 0;
};
