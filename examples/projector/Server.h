#pragma once

#include <functional>

#include <QTcpServer>

#include "Projector.h"
#include "ProjectorOptions.h"

namespace projector {

/// A projector on a port of the loopback address. All its clients
/// see the same projector. One thread with an event loop.
class Server : public QObject {
    Q_OBJECT

public:
    explicit Server(Options options);

    /// @return false when the port cannot be had; ErrorText tells why.
    bool Listen();
    quint16 Port() const { return m_listener.serverPort(); }
    QString ErrorText() const { return m_listener.errorString(); }

    /// Is called with each command as it came, without its CR.
    void OnCommand(std::function<void(const QByteArray&)> trace) { m_trace = std::move(trace); }

private:
    void Welcome();

    const Options m_options;
    Projector m_projector;
    std::function<void(const QByteArray&)> m_trace = [](const QByteArray&) {};
    QTcpServer m_listener;
};

} // namespace projector
