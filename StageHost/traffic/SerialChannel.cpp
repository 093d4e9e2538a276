#include "SerialChannel.h"

#include <utility>

#include <QFileInfo>

#include "SerialLine.h"
#include "SettingTable.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kTryAgain(1000);
constexpr std::chrono::milliseconds kLookAtPort(50);

constexpr SerialSetting kAppliedInOrder[] = {SerialSetting::BaudRate,     SerialSetting::DataSize,
                                             SerialSetting::Parity,       SerialSetting::StopBits,
                                             SerialSetting::RtsHandshake, SerialSetting::CtsOutFlow};

} // namespace

SerialChannel::SerialChannel(const QString& path, const SerialSettings& settings)
    : m_path(path)
    , m_settings(settings) {
    m_retry.setInterval(kTryAgain);
    m_look.setInterval(kLookAtPort);
    QObject::connect(&m_retry, &QTimer::timeout, &m_retry, [this] { TryToOpen(); });
    QObject::connect(&m_look, &QTimer::timeout, &m_look, [this] {
        if (IsHungUp(m_port.handle()))
            Lose(QStringLiteral("the port has gone"));
    });
}

void SerialChannel::Open() {
    TryToOpen();
    if (!m_port.isOpen())
        m_retry.start();
}

void SerialChannel::TryToOpen() {
    const QString found = QFileInfo(m_path).canonicalFilePath(); // a link may lead to another port when it is back
    m_port.setPortName(found.isEmpty() ? m_path : found);
    if (found.isEmpty())
        return Lose(QStringLiteral("there is no such port"));
    if (!m_port.open(QIODevice::ReadWrite))
        return Lose(m_port.errorString());
    if (!ApplySettings())
        return Lose(QStringLiteral("the port does not take these settings"));
    if (!TakeOverBytes())
        return Lose(QStringLiteral("no descriptor is left for the port"));
    m_retry.stop();
    m_look.start();
    m_isTold = false;
    if (m_news.connected)
        ChannelNews(m_news).connected();
}

bool SerialChannel::ApplySettings() {
    bool areTaken = true;
    for (const SerialSetting setting : kAppliedInOrder)
        areTaken = areTaken && (!m_settings.Get(setting) || ApplySetting(m_port, m_settings, setting));
    return areTaken;
}

/// The toolkit's look at what comes is put aside, so that each byte has one reader.
bool SerialChannel::TakeOverBytes() {
    const int second = SecondDescriptor(static_cast<int>(m_port.handle()));
    if (second < 0)
        return false;
    for (QSocketNotifier* const look : m_port.findChildren<QSocketNotifier*>())
        look->setEnabled(false);
    m_bytes = StreamChannel::OverTerminal(second);
    ChannelNews news;
    news.came = [this](const QByteArray& bytes) {
        if (m_news.came)
            ChannelNews(m_news).came(bytes);
    };
    news.drained = [this] {
        if (m_news.drained)
            ChannelNews(m_news).drained();
    };
    news.lost = [this](const QString&, bool) { Lose(QStringLiteral("the port has gone")); };
    m_bytes->SetNews(std::move(news));
    m_bytes->SetReading(m_reads);
    return true;
}

void SerialChannel::Send(const QByteArray& bytes) {
    if (m_bytes)
        m_bytes->Send(bytes);
}

void SerialChannel::Close() {
    m_news = {};
    m_retry.stop();
    LetGo();
}

void SerialChannel::SetReading(bool reads) {
    m_reads = reads;
    if (m_bytes)
        m_bytes->SetReading(reads);
}

void SerialChannel::LetGo() {
    m_look.stop();
    if (const auto bytes = std::exchange(m_bytes, nullptr))
        bytes->Close();
    m_port.close();
}

void SerialChannel::Lose(const QString& why) {
    LetGo();
    m_retry.start();
    if (std::exchange(m_isTold, true) || !m_news.lost)
        return;
    ChannelNews(m_news).lost(why, false);
}

} // namespace stagehost
