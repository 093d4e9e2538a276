#include "SerialChannel.h"

#include <utility>

#include <QFileInfo>

#include "SerialLine.h"
#include "SettingTable.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kTryAgain(1000);
constexpr std::chrono::milliseconds kLookAtPort(50);
constexpr qint64 kMostRead = 64 * 1024; // bytes: what the toolkit may hold of what came

constexpr SerialSetting kAppliedInOrder[] = {SerialSetting::BaudRate,     SerialSetting::DataSize,
                                             SerialSetting::Parity,       SerialSetting::StopBits,
                                             SerialSetting::RtsHandshake, SerialSetting::CtsOutFlow};

} // namespace

SerialChannel::SerialChannel(const QString& path, const SerialSettings& settings)
    : m_path(path)
    , m_settings(settings) {
    m_retry.setInterval(kTryAgain);
    m_look.setInterval(kLookAtPort);
    m_port.setReadBufferSize(kMostRead);
    QObject::connect(&m_retry, &QTimer::timeout, &m_retry, [this] { TryToOpen(); });
    QObject::connect(&m_look, &QTimer::timeout, &m_look, [this] {
        if (IsHungUp(m_port.handle()))
            Lose(QStringLiteral("the port has gone"));
    });
    QObject::connect(&m_port, &QSerialPort::readyRead, &m_retry, [this] { Read(); });
    QObject::connect(&m_port, &QSerialPort::bytesWritten, &m_retry, [this] {
        if (m_port.bytesToWrite() == 0 && m_news.drained)
            ChannelNews(m_news).drained();
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

/// Leaves at once where nothing waits. The toolkit would wait until the port says that it can be written, and once more
/// until it has been: the first call writes, the second one takes note of that.
void SerialChannel::Send(const QByteArray& bytes) {
    if (!m_port.isOpen())
        return;
    const bool waits = m_port.bytesToWrite() > 0;
    m_port.write(bytes);
    if (!waits && m_port.flush())
        m_port.flush();
}

void SerialChannel::Close() {
    m_news = {};
    m_retry.stop();
    m_look.stop();
    if (m_port.isOpen() && m_port.bytesToWrite() > 0)
        m_port.flush();
    m_port.close();
}

void SerialChannel::SetReading(bool reads) {
    m_reads = reads;
    if (reads && m_port.bytesAvailable() > 0)
        QTimer::singleShot(0, &m_retry, [this] { Read(); });
}

/// What is not read stays with the toolkit, and beyond its bound with the system.
void SerialChannel::Read() {
    if (m_reads && m_port.bytesAvailable() > 0 && m_news.came)
        ChannelNews(m_news).came(m_port.readAll());
}

void SerialChannel::Lose(const QString& why) {
    m_look.stop();
    m_port.close();
    m_retry.start();
    if (std::exchange(m_isTold, true) || !m_news.lost)
        return;
    ChannelNews(m_news).lost(why, false);
}

} // namespace stagehost
