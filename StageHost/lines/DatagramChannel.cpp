#include "DatagramChannel.h"

#include <array>
#include <utility>

namespace stagehost {

std::shared_ptr<DatagramChannel> DatagramChannel::To(const NetAddress& address, QString& problem) {
    std::string why;
    const int descriptor = ConnectDatagrams(address, why);
    problem = QString::fromStdString(why);
    return descriptor < 0 ? nullptr : std::shared_ptr<DatagramChannel>(new DatagramChannel(descriptor));
}

DatagramChannel::DatagramChannel(int descriptor)
    : m_descriptor(descriptor)
    , m_readable(new QSocketNotifier(descriptor, QSocketNotifier::Read)) {
    QObject::connect(m_readable, &QSocketNotifier::activated, m_readable, [this] { ReadyToRead(); });
}

void DatagramChannel::Send(const QByteArray& bytes) {
    if (m_descriptor < 0)
        return;
    Note(SendTo(m_descriptor, bytes.constData(), static_cast<std::size_t>(bytes.size())));
}

void DatagramChannel::Close() {
    m_news = {};
    if (m_descriptor < 0)
        return;
    m_readable->setEnabled(false);
    m_readable->deleteLater();
    CloseLine(std::exchange(m_descriptor, -1));
}

void DatagramChannel::SetReading(bool reads) {
    if (m_descriptor >= 0)
        m_readable->setEnabled(reads);
}

void DatagramChannel::ReadyToRead() {
    const auto stays = shared_from_this();
    std::array<char, kLargestDatagram> buffer;
    const IoResult result = Receive(m_descriptor, buffer.data(), buffer.size());
    if (result.state == IoState::Done && m_news.came)
        ChannelNews(m_news).came(QByteArray(buffer.data(), static_cast<int>(result.count)));
    else
        Note(result);
}

void DatagramChannel::Note(const IoResult& result) {
    if ((result.state == IoState::Failed || result.state == IoState::Reset) && m_news.refused)
        ChannelNews(m_news).refused(QString::fromStdString(result.problem));
}

} // namespace stagehost
