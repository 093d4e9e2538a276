#pragma once

#include <memory>

#include <QSerialPort>
#include <QTimer>

#include "SerialSettings.h"
#include "StreamChannel.h"

namespace stagehost {

/// A serial port of the system, to which a device is connected. One that is missing, busy or pulled out is tried again
/// each second until it is closed; `lost` is told each time that it goes, `connected` when it is there. What is sent
/// meanwhile is lost, as on a cable that leads nowhere.
///
/// The toolkit opens the port, sets it up and puts it back; its bytes pass without it, which spares each piece
/// the way through its buffers and notifiers.   [host main]
class SerialChannel final : public Channel {
public:
    SerialChannel(const QString& path, const SerialSettings& settings);
    ~SerialChannel() override { Close(); }

    /// Begins, once it is known who hears of it.
    void Open();

    void Send(const QByteArray& bytes) override;
    qint64 Unsent() const override { return m_bytes ? m_bytes->Unsent() : 0; }
    void Close() override;
    void SetReading(bool reads) override;

private:
    void TryToOpen();
    bool ApplySettings();
    bool TakeOverBytes();
    void LetGo();
    void Lose(const QString& why);

    const QString m_path;
    const SerialSettings m_settings;
    QSerialPort m_port;
    std::shared_ptr<StreamChannel> m_bytes; ///< null while the port is not there
    QTimer m_retry;
    QTimer m_look; ///< whether the port is still there
    bool m_reads = true;
    bool m_isTold = false; ///< that it is not there
};

} // namespace stagehost
