#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>

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
        /// Cuts what has come; where frames are cut by the script itself, that is inside it.
        std::function<void(const std::function<void()>& cut)> cut;
    };

    CounterpartEnd(QString name, LineKind kind, FramingRule rule, News news);

    const QString& Name() const { return m_name; }
    QString Open(const LinePlace& place) { return m_endpoint->Open(place); }
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

    const QString m_name;
    const FramingRule m_rule;
    const News m_news;
    const std::unique_ptr<Endpoint> m_endpoint;
    struct Line {
        Framing framing;
        std::unique_ptr<Speaker> speaker;
    };
    std::map<LineId, Line> m_lines;
    std::unique_ptr<Mischief> m_mischief;
    bool m_isStalled = false;
};

} // namespace stagehost
