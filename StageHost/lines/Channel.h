#pragma once

#include <functional>

#include <QByteArray>
#include <QString>

namespace stagehost {

/// What a channel tells. Each may close channels, this one too. What is not set is not told.   [host main]
struct ChannelNews {
    std::function<void(const QByteArray& bytes)> came; ///< of a datagram channel: one datagram
    std::function<void()> connected;                   ///< of a channel that had to connect first
    std::function<void()> ended;                       ///< the other side says no more, and may still listen
    std::function<void()> drained;                     ///< all that waited to be sent has been handed to the system
    /// A datagram was not taken at the other side, as far as the system knows; the channel goes on.
    std::function<void(const QString& why)> refused;
    /// The channel is over, and was not closed here. @param why empty when both sides have ended in
    /// order, which `ended` has told before.
    std::function<void(const QString& why, bool isReset)> lost;
};

/// One connection with one other side, both ways. It is over after Close, Reset or `lost`; from then on it tells
/// nothing and takes nothing.   [host main]
class Channel {
public:
    virtual ~Channel() = default;
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    void SetNews(ChannelNews news) { m_news = std::move(news); }

    /// Sends, in order; what the system does not take at once waits here.
    virtual void Send(const QByteArray& bytes) = 0;
    /// Bytes that wait here. Who feeds a channel from another one stops reading that one above some bound.
    virtual qint64 Unsent() const { return 0; }
    /// Says that nothing more comes, once all has been sent. Datagrams know no such thing.
    virtual void EndSending() {}
    /// Ends both ways; what was sent still goes out.
    virtual void Close() = 0;
    /// Throws the connection away, so that the other side sees a reset. Where there is no such thing, the same as
    /// Close.
    virtual void Reset() { Close(); }
    /// Stops and goes on reading. What comes meanwhile waits at the system, and so holds the other side up.
    virtual void SetReading(bool reads) = 0;

protected:
    Channel() = default;

    ChannelNews m_news;
};

} // namespace stagehost
