#pragma once

#include <QTcpServer>

#include <functional>

#include "Options.h"
#include "Projector.h"

namespace projector {

/// A projector on a port of the loopback address. All its clients see the same projector. One thread with an event loop.
class Server : public QObject {
    Q_OBJECT

public:
    explicit Server(Options options);

    /// @return false when the port cannot be had; ErrorText tells why.
    bool Listen();
    quint16 Port() const { return listener_.serverPort(); }
    QString ErrorText() const { return listener_.errorString(); }

    /// Is called with each command as it came, without its CR.
    void OnCommand(std::function<void(const QByteArray&)> trace) { trace_ = std::move(trace); }

private:
    void Welcome();

    const Options options_;
    Projector projector_;
    std::function<void(const QByteArray&)> trace_ = [](const QByteArray&) {};
    QTcpServer listener_;
};

} // namespace projector
