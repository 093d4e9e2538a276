#pragma once

#include <memory>

#include <QSocketNotifier>

#include "Endpoint.h"

namespace stagehost {

/// A TCP port that devices' drivers connect to.   [host main]
class TcpEndpoint final : public Endpoint {
public:
    explicit TcpEndpoint(EndpointNews& news)
        : Endpoint(news) {}
    ~TcpEndpoint() override;

    QString Open(const LinePlace& place) override;

private:
    void LetIn(bool lets) override;
    void CloseDoor() override;
    void DoLeave() override {}
    QString DoReturn() override;
    void LineIsOver(LineId, bool) override {}
    void WatchListener();
    void Accept();
    void Drop();

    int m_listener = -1;
    int m_held = -1; ///< the port while the listener is away
    std::unique_ptr<QSocketNotifier> m_comes;
};

} // namespace stagehost
