#pragma once

#include <QObject>
#include <QQueue>
#include <QTcpSocket>
#include <QTimer>

#include <functional>

#include "Options.h"

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

    QTcpSocket* socket_;
    Projector& projector_;
    const Options& options_;
    const std::function<void(const QByteArray&)> trace_;
    QByteArray received_; ///< what has come since the last CR
    QByteArray digest_;   ///< asked for before the first command; empty when none is
    QQueue<QByteArray> waiting_;
    QTimer pace_; ///< runs while something waits to be sent
    QTimer idle_; ///< ends a connection that says nothing
    int answered_ = 0;
};

} // namespace projector
