#pragma once

#include <functional>

#include <QObject>
#include <QQueue>
#include <QTcpSocket>
#include <QTimer>

#include "ProjectorOptions.h"

namespace projector {

class Projector;

/// One client: greets it, checks its password, answers its commands in their order. Deletes itself, and the socket with
/// it, when the client has gone.
class Connection : public QObject {
    Q_OBJECT

public:
    /// @param socket becomes this object's. @param projector and options are borrowed and outlive it.
    /// @param trace is called with each command as it came.
    Connection(QTcpSocket* socket, Projector& projector, const Options& options,
               std::function<void(const QByteArray&)> trace, QObject* parent);

private:
    void Greet();
    void Read();
    void Take(QByteArray line);
    bool MayPass(QByteArray& line);
    void Queue(const QByteArray& answer);
    void SendNext();
    void SendAfter(int milliseconds);
    void Close();

    QTcpSocket* m_socket;
    Projector& m_projector;
    const Options& m_options;
    const std::function<void(const QByteArray&)> m_trace;
    QByteArray m_received; ///< what has come since the last CR
    QByteArray m_digest;   ///< asked for before the first command; empty when none is
    QQueue<QByteArray> m_waiting;
    QTimer m_pace; ///< runs while something waits to be sent
    QTimer m_idle; ///< ends a connection that says nothing
    int m_answered = 0;
};

} // namespace projector
