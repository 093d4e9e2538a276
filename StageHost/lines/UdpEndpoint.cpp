#include "UdpEndpoint.h"

#include <algorithm>
#include <array>
#include <utility>

#include "DatagramChannel.h"

namespace stagehost {

namespace {

constexpr std::size_t kMostSenders = 1024;

} // namespace

/// What comes back to one sender leaves by the port that it has sent to.
class UdpEndpoint::Sender : public Channel {
public:
    Sender(int socket, const SenderAddress& address)
        : m_socket(socket)
        , m_address(address) {}

    void Send(const QByteArray& bytes) override {
        if (!m_isOver)
            SendTo(m_socket, bytes.constData(), static_cast<std::size_t>(bytes.size()), m_address);
    }
    void Close() override { m_isOver = true; }
    /// The socket is everybody's: a sender that is not read is one whose datagrams are dropped.
    void SetReading(bool reads) override { m_reads = reads; }

    void Deliver(const QByteArray& bytes) {
        if (m_reads && !m_isOver && m_news.came)
            ChannelNews(m_news).came(bytes);
    }

    const SenderAddress& Address() const { return m_address; }
    std::uint64_t lastHeard = 0;

private:
    const int m_socket;
    const SenderAddress m_address;
    bool m_isOver = false;
    bool m_reads = true;
};

UdpEndpoint::~UdpEndpoint() {
    CloseAll();
    Drop();
    CloseLine(m_held);
}

QString UdpEndpoint::Open(const LinePlace& place) {
    NetAddress address;
    QString unknown = AddressOf(place, address);
    if (!unknown.isEmpty())
        return unknown;
    std::string problem;
    m_socket = OpenDatagrams(address, problem);
    if (m_socket < 0)
        return QString::fromStdString(problem);
    m_place = place;
    m_place.port = LocalAddress(m_socket).port;
    WatchSocket();
    return {};
}

void UdpEndpoint::WatchSocket() {
    m_readable = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Read);
    QObject::connect(m_readable.get(), &QSocketNotifier::activated, m_readable.get(), [this] { Read(); });
}

void UdpEndpoint::Read() {
    std::array<char, kLargestDatagram> buffer;
    SenderAddress who;
    const IoResult result = ReceiveFrom(m_socket, buffer.data(), buffer.size(), who);
    if (result.state != IoState::Done)
        return;
    const auto found = m_channels.find(LineOf(who));
    if (found == m_channels.end())
        return; // closed by whoever was told that it has opened
    const auto sender = found->second;
    sender->lastHeard = ++m_datagrams;
    sender->Deliver(QByteArray(buffer.data(), static_cast<int>(result.count)));
}

LineId UdpEndpoint::LineOf(const SenderAddress& who) {
    const auto known = m_senders.find(who);
    if (known != m_senders.end())
        return known->second;
    if (m_senders.size() >= kMostSenders)
        ForgetTheSilent();
    const auto sender = std::make_shared<Sender>(m_socket, who);
    const LineId line = NextLine();
    sender->lastHeard = ++m_datagrams;
    m_senders[who] = line;
    m_channels[line] = sender;
    const NetAddress numbers = InNumbers(who);
    return Add(sender, TextOf({LineKind::Udp, QString::fromStdString(numbers.host), numbers.port, {}}));
}

void UdpEndpoint::ForgetTheSilent() {
    const auto silent = std::min_element(m_channels.begin(), m_channels.end(), [](const auto& one, const auto& other) {
        return one.second->lastHeard < other.second->lastHeard;
    });
    Forget(silent->first, QStringLiteral("too many others have sent since"));
}

void UdpEndpoint::LineIsOver(LineId line, bool) {
    const auto found = m_channels.find(line);
    if (found == m_channels.end())
        return;
    m_senders.erase(found->second->Address());
    m_channels.erase(found);
}

void UdpEndpoint::LetIn(bool lets) {
    if (m_readable)
        m_readable->setEnabled(lets);
}

void UdpEndpoint::Drop() {
    if (m_readable) {
        m_readable->setEnabled(false);
        m_readable.release()->deleteLater(); // perhaps from inside its own signal
    }
    CloseLine(std::exchange(m_socket, -1));
}

void UdpEndpoint::DoLeave() {
    const NetAddress address = LocalAddress(m_socket);
    Drop();
    std::string problem;
    m_held = HoldDatagramPort(address, problem);
}

QString UdpEndpoint::DoReturn() {
    if (m_held < 0 || !Hear(m_held))
        return QStringLiteral("the port %1 has been taken").arg(m_place.port);
    m_socket = std::exchange(m_held, -1);
    WatchSocket();
    return {};
}

} // namespace stagehost
