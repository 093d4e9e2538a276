#pragma once

#include <QSerialPort>
#include <QTimer>

#include "Channel.h"
#include "SerialSettings.h"

namespace stagehost {

/// A serial port of the system, to which a device is connected. One that is missing, busy or pulled out is tried again
/// each second until it is closed; `lost` is told each time that it goes, `connected` when it is there. What is sent
/// meanwhile is lost, as on a cable that leads nowhere.   [host main]
class SerialChannel final : public Channel {
public:
    SerialChannel(const QString& path, const SerialSettings& settings);
    ~SerialChannel() override { Close(); }

    /// Begins, once it is known who hears of it.
    void Open();

    void Send(const QByteArray& bytes) override;
    qint64 Unsent() const override { return m_port.bytesToWrite(); }
    void Close() override;
    void SetReading(bool reads) override;

private:
    void TryToOpen();
    bool ApplySettings();
    void Read();
    void Lose(const QString& why);

    const QString m_path;
    const SerialSettings m_settings;
    QSerialPort m_port;
    QTimer m_retry;
    QTimer m_look; ///< whether the port is still there
    bool m_reads = true;
    bool m_isTold = false; ///< that it is not there
};

} // namespace stagehost
