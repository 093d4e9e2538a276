#include <algorithm>

#include "MUDPSocket.h"
#include "RunWithinMemory.h"

// The body of the socket's thread. It waits in WaitForSocket, which m_wake ends, and after a failure for a moment,
// which a stop ends.

std::uint32_t MUDPSocket::Run() {
    const SocketPtr socket = CurrentSocket();
    m_sourceAddress = 0;
    m_sourcePort = 0;
    m_sourceText.clear();
    while (!StopRequested() && socket) {
        const SocketReadiness readiness = WaitForSocket(socket.get(), SocketInterest::Reading, m_wake, kInfinite);
        if (readiness.failed) {
            CloseSocket();
            TellError(NetSetupFailed);
            return 0;
        }
        const auto receive = [&] {
            while (readiness.ready && !StopRequested() && ReceiveBurst(*socket)) {
            }
        };
        if (!RunWithinMemory(receive))
            RunWithinMemory([this] { ReportReceiveFailure(); });
    }
    return 0;
}

// True when more may be at hand.
bool MUDPSocket::ReceiveBurst(const SystemSocket& socket) {
    const std::size_t size = std::min(m_receiveBufferSize.load(), SystemSocket::GetMaxMessageSize());
    if (m_reader.GetSize() != size)
        m_reader.SetSize(size);
    const SocketError error = m_reader.Receive(socket);
    if (error == SocketError::None)
        DeliverBurst();
    else if (error != SocketError::WouldBlock)
        ReportReceiveFailure();
    return m_reader.GetCount() > 0;
}

// The handlers' lock is taken once for the burst; Tell enters it again.
void MUDPSocket::DeliverBurst() {
    const std::lock_guard<HandlerList<IUDPSocketHandler>> guard(m_handlers);
    for (std::size_t position = 0; position < m_reader.GetCount() && !StopRequested(); ++position)
        Deliver(m_reader.Get(position));
    m_handlers.Tell([this](IUDPSocketHandler& handler) { handler.OnBurstEnd(this); });
}

// A datagram that was cut comes with the sender of the last whole one.
void MUDPSocket::Deliver(const Datagram& datagram) {
    if (datagram.truncated)
        TellError(NetBufferTooSmall);
    else
        NoteSource(datagram.source);
    const auto length = static_cast<std::int32_t>(datagram.length);
    m_handlers.Tell([&](IUDPSocketHandler& handler) {
        handler.OnMessage(datagram.data, length, m_sourceText.c_str(), m_sourcePort, this);
    });
}

void MUDPSocket::NoteSource(const SocketAddress& source) {
    if (m_sourceText.empty() || m_sourceAddress != source.address)
        m_sourceText = DottedText(source.address);
    m_sourceAddress = source.address;
    m_sourcePort = source.port;
}

void MUDPSocket::TellError(std::int32_t code) {
    m_handlers.Tell([=](IUDPSocketHandler& handler) { handler.OnError(code, this); });
}

// A socket that goes on failing must not make the thread spin.
void MUDPSocket::ReportReceiveFailure() {
    TellError(NetReadFailed);
    Sleep(kBackOffMs);
}
