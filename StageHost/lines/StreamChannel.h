#pragma once

#include <memory>

#include <QSocketNotifier>
#include <QTimer>

#include "Channel.h"
#include "DeleteLater.h"
#include "LineCalls.h"

namespace stagehost {

/// A channel of bytes over a descriptor of the system: a TCP connection, our end of a pseudo-terminal.   [host main]
class StreamChannel : public Channel, public std::enable_shared_from_this<StreamChannel> {
public:
    /// Takes over a descriptor that is connected.
    static std::shared_ptr<StreamChannel> Over(int descriptor);

    /// Takes over a terminal, a serial port or our end of a pseudo-terminal, which has no halves to close and nothing
    /// to wait for.
    static std::shared_ptr<StreamChannel> OverTerminal(int descriptor);

    /// Begins to connect; what is sent meanwhile waits. A failure is told as `lost`, never from inside this call.
    static std::shared_ptr<StreamChannel> ConnectTo(const NetAddress& address);

    ~StreamChannel() override;

    void Send(const QByteArray& bytes) override;
    qint64 Unsent() const override { return m_waiting.size() - m_sent; }
    void EndSending() override;
    void Close() override;
    void Reset() override;
    void SetReading(bool reads) override;

private:
    explicit StreamChannel(int descriptor);

    void Watch();
    void ListenToNotifiers();
    void ReadyToRead();
    void ReadyToWrite();
    void FinishConnecting();
    IoResult Write(const char* data, qint64 size) const;
    void WriteWaiting();
    void AfterWriting();
    void Lose(const QString& why, bool isReset);
    void LetGo(void (*close)(int));

    int m_descriptor;
    std::unique_ptr<QSocketNotifier> m_readable;
    std::unique_ptr<QSocketNotifier> m_writable;
    DeletedLater<QTimer> m_patience{new QTimer}; ///< with a closed channel: for what still has to leave
    QByteArray m_waiting;
    int m_sent = 0;    ///< bytes of m_waiting that have left
    QString m_problem; ///< why the connect could not even begin
    bool m_isTerminal = false;
    bool m_connects = false;
    bool m_reads = true;
    bool m_hearsNoMore = false;            ///< the other side has ended
    bool m_endsSending = false;            ///< asked for
    bool m_saysNoMore = false;             ///< done
    bool m_closes = false;                 ///< closed here; the rest leaves in the background
    std::shared_ptr<StreamChannel> m_self; ///< while the rest leaves nobody else may hold it
};

} // namespace stagehost
