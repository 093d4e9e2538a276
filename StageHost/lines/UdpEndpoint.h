#pragma once

#include <map>
#include <memory>

#include <QSocketNotifier>

#include "Endpoint.h"

namespace stagehost {

/// A UDP port; each address that sends to it is a line.   [host main]
class UdpEndpoint final : public Endpoint {
public:
    explicit UdpEndpoint(EndpointNews& news)
        : Endpoint(news) {}
    ~UdpEndpoint() override;

    QString Open(const LinePlace& place) override;

private:
    class Sender;

    void LetIn(bool lets) override;
    void DoLeave() override;
    QString DoReturn() override;
    void LineIsOver(LineId line, bool isClosedHere) override;
    void WatchSocket();
    void Read();
    LineId LineOf(const SenderAddress& who);
    void ForgetTheSilent();
    void Drop();

    int m_socket = -1;
    int m_held = -1; ///< the port while nobody hears
    std::unique_ptr<QSocketNotifier> m_readable;
    std::map<SenderAddress, LineId> m_senders;
    std::map<LineId, std::shared_ptr<Sender>> m_channels;
    std::uint64_t m_datagrams = 0; ///< a clock of its own, by which the silent are known
};

} // namespace stagehost
