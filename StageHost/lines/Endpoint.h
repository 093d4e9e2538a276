#pragma once

#include <map>
#include <memory>
#include <vector>

#include <QJsonObject>

#include "Channel.h"
#include "LinePlace.h"

namespace stagehost {

/// A connection of an endpoint: counted from 1, no number is used twice.
using LineId = int;

/// Hears of an endpoint. From inside each call, all calls to the endpoint are allowed but its end.   [host main]
class EndpointNews {
public:
    /// @param who is at the other side, for people: "127.0.0.1:40312"; empty where nobody can tell.
    virtual void Opened(LineId line, const QString& who) = 0;
    /// @param bytes as they came: of a stream any piece of it, of UDP one datagram.
    virtual void Came(LineId line, const QByteArray& bytes) = 0;
    /// The other side says no more, and may still listen. Only TCP knows that.
    virtual void Ended(LineId) {}
    /// All that waited to be sent has been handed to the system.
    virtual void Drained(LineId) {}
    /// The other side has gone. Lines that were closed on this side are not told.
    /// @param why empty for an end in order.
    virtual void Closed(LineId line, const QString& why) = 0;

protected:
    ~EndpointNews() = default;
};

/// One place where a device is reached: a TCP listener, a UDP socket, a pseudo-terminal.
///
/// - what is told of a line comes in order, begins with Opened, and nothing comes after Closed;
/// - what is asked of a line that is over does nothing;
/// - while it is stalled nothing is read and nobody is let in; what waits at the system is read afterwards;
/// - while it has left, connections are refused; it returns to the same place.
///
/// UDP has a line for each address that has sent something; beyond 1024 the one that was silent longest is forgotten,
/// and told as closed. A serial line is open while a program has the pseudo-terminal open; closed on this side, the
/// program sees an adapter that is pulled out and put back.   [host main]
class Endpoint {
public:
    /// @param news must outlive the endpoint.
    static std::unique_ptr<Endpoint> Make(LineKind kind, EndpointNews& news);
    virtual ~Endpoint() = default;
    Endpoint(const Endpoint&) = delete;
    Endpoint& operator=(const Endpoint&) = delete;

    /// Opens it. @param place with port 0 for any free one; with an empty path for one that is made up, otherwise the
    /// path becomes a link to the pseudo-terminal. @return empty, or what is wrong.
    virtual QString Open(const LinePlace& place) = 0;

    /// Where it is, once it is open: the port that it really got.
    const LinePlace& Place() const { return m_place; }
    /// The same as ready lines have it: {"tcp":4352}, {"serial":"/dev/pts/4"}.
    QJsonObject PlaceJson() const;

    void Send(LineId line, const QByteArray& bytes);
    /// Bytes of a line that wait because the other side does not take them.
    qint64 Unsent(LineId line) const;
    void EndSending(LineId line); ///< a half close
    void Close(LineId line);      ///< what was sent still goes out
    void Reset(LineId line);      ///< the other side sees a reset
    void SetReading(LineId line, bool reads);
    std::vector<LineId> Lines() const;
    /// Lets in at once who has come and has not been seen yet.
    virtual void LookForPrograms() {}

    void Stall();
    void Resume();
    /// The listener and all lines are closed; the place is kept.
    void Leave();
    /// @return empty, or why it is not there again.
    QString Return();

protected:
    explicit Endpoint(EndpointNews& news)
        : m_news(news) {}

    /// Takes a channel among the lines and tells of it.
    LineId Add(const std::shared_ptr<Channel>& channel, const QString& who);
    /// The number that the next one gets.
    LineId NextLine() const { return m_last + 1; }
    Channel* Find(LineId line) const;
    void CloseAll();
    void Forget(LineId line, const QString& why);
    bool IsStalled() const { return m_isStalled; }

    virtual void LetIn(bool lets) = 0;
    /// Before the lines are closed: who comes back at once is refused, and not let in and thrown out.
    virtual void CloseDoor() {}
    virtual void DoLeave() = 0;
    virtual QString DoReturn() = 0;
    /// What is still to be done behind the end of a line. @param isClosedHere not by the other side.
    virtual void LineIsOver(LineId line, bool isClosedHere) = 0;

    EndpointNews& m_news;
    LinePlace m_place;

private:
    std::map<LineId, std::shared_ptr<Channel>> m_lines;
    LineId m_last = 0;
    bool m_isStalled = false;
    bool m_hasLeft = false;
};

} // namespace stagehost
