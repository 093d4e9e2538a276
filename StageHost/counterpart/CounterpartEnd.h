#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>

#include <QObject>

#include "Framing.h"
#include "Speaker.h"

namespace stagehost {

/// One endpoint of a counterpart: cuts what comes into frames, and says what its script says, or what a prank makes of
/// it.   [host main]
class CounterpartEnd final : private EndpointNews {
public:
    /// What happens at it, in order. `took` gets a whole frame or datagram.
    struct News {
        std::function<void(LineId line, const QString& who)> opened;
        std::function<void(LineId line, const QByteArray& frame)> took;
        std::function<void(LineId line)> ended;
        std::function<void(LineId line, const QString& why)> closed;
        std::function<void(const QString& problem)> problem;
        /// Does something that may enter the script, or takes away what a call of the script may stand on: now, or
        /// behind the script that runs.
        std::function<void(std::function<void()> work)> enter;
    };

    CounterpartEnd(QString name, LineKind kind, FramingRule rule, News news);

    const QString& Name() const { return m_name; }
    QString Open(const LinePlace& place) { return m_endpoint->Open(place); }
    /// Leaves, and tells nobody anything from now on.
    void Retire();
    /// Behind Retire: returns to its place for somebody else. @return empty, or why it is not there.
    QString BeginAnew(FramingRule rule, News news);
    const Endpoint& Place() const { return *m_endpoint; }

    /// @return the name of the prank that was played; nothing when the line is over or cannot take more.
    std::optional<QString> Say(LineId line, const QByteArray& bytes);
    void Close(LineId line, PrankedPiece::End how);
    void SetReading(LineId line, bool reads) { m_endpoint->SetReading(line, reads); }
    void Leave();
    QString Return() { return m_endpoint->Return(); }
    void Stall();
    void Resume();
    /// What is said from now on is pranked, one in so many times; nullptr for the truth.
    void SetMischief(std::unique_ptr<Mischief> mischief) { m_mischief = std::move(mischief); }

private:
    void Opened(LineId line, const QString& who) override;
    void Came(LineId line, const QByteArray& bytes) override;
    void Ended(LineId line) override;
    void Closed(LineId line, const QString& why) override;
    void Cut(LineId line);
    void Forget(LineId line, const QString& why);

    const QString m_name;
    FramingRule m_rule;
    News m_news;
    const std::unique_ptr<Endpoint> m_endpoint;
    struct Line {
        Framing framing;
        std::unique_ptr<Speaker> speaker;
    };
    std::map<LineId, Line> m_lines;
    std::unique_ptr<Mischief> m_mischief;
    bool m_isStalled = false;
    QObject m_later; ///< what is posted goes with it
};

} // namespace stagehost
