#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "DeleteLater.h"
#include "Endpoint.h"
#include "Mischief.h"
#include "NearTexts.h"
#include "Passage.h"
#include "TrafficFile.h"

namespace stagehost {

/// How a traffic file is played.
struct ReplayPlan {
    bool isFast = false;   ///< answers come at once
    bool anyOrder = false; ///< requests of all connections are known on each, in whatever order they come
};

/// What a replay tells.
struct ReplayNews {
    std::function<void(LineId line, const QString& who)> opened;
    std::function<void(LineId line, const QByteArray& bytes, int fileLine)> received; ///< a request that is known
    std::function<void(LineId line, const QByteArray& bytes)> said;
    /// A request that is not known, or not in turn. @param expected empty where any may come.
    std::function<void(LineId line, const QByteArray& bytes, const QString& nearest, int fileLine,
                       const QString& expected)>
        unknown;
};

/// Plays the device of a traffic file: greets, and answers each request as it was answered then.
///
/// - requests are known by their bytes, however they are cut on the way; a datagram is one request;
/// - in their order, connection after connection: the first that comes is answered as the first of the file was, and
///   behind the last the first one is played again. A request that comes early is told, answered, and what was before
///   it is left out;
/// - in any order: what was asked more than once is answered as it was each time, and then as the last time. An answer
///   that came behind a rarer request waits for that one: a device that is asked for its state over and over is still
///   off until it is switched on, however often it is asked;
/// - what is not known is told with the nearest that is, and left out.   [host main]
class Replay final : private EndpointNews {
public:
    Replay(TrafficFile file, ReplayPlan plan, ReplayNews news);
    ~Replay();
    Replay(const Replay&) = delete;
    Replay& operator=(const Replay&) = delete;

    /// @return empty, or what is wrong.
    QString Open(const LinePlace& place) { return m_endpoint->Open(place); }

    Endpoint& TheEndpoint() { return *m_endpoint; }

    /// From now on all that is said is pranked; with None no more.
    void Lie(Prank prank) { m_prank = prank; }

    /// Tells what is left of requests that have not become whole.
    void Finish();

    int UnknownCount() const { return m_unknown; }

private:
    /// A request of the file, with the exchanges that began with it: places in m_all.
    struct Known {
        const TrafficPattern* request;
        std::vector<std::size_t> turns;
        std::size_t next = 0;
        std::size_t cleared = 0; ///< up to here no rarer request is missing before the next turn: a place in m_all
    };

    /// An exchange among those of all talks.
    struct Place {
        const TrafficExchange* exchange;
        std::size_t known; ///< its request in m_known
        bool wasPlayed = false;
    };

    struct Caller {
        const TrafficTalk* talk = nullptr;
        std::size_t next = 0; ///< the exchange that is expected
        QByteArray waiting;   ///< came, and has not become a whole request
        FreePlaces places;
        std::shared_ptr<Passage> way;
        DeletedLater<QTimer> quiet; ///< how long is waited for the rest of what is not known
    };

    /// What the waiting bytes of a caller are.
    struct Finding {
        const TrafficExchange* exchange = nullptr; ///< a whole request
        int size = 0;
        bool mayBecome = false; ///< the begin of one
    };

    void Opened(LineId line, const QString& who) override;
    void Came(LineId line, const QByteArray& bytes) override;
    void Ended(LineId line) override;
    void Closed(LineId line, const QString& why) override;

    void GatherRequests();
    std::size_t NumberOf(const TrafficPattern& request);
    void TakeRequests(LineId line);
    bool TakeOne(LineId line, Caller& caller);
    Finding FindInOrder(Caller& caller) const;
    Finding FindInAnyOrder(Caller& caller);
    std::optional<std::size_t> LongestPlain(QByteArray bytes) const;
    bool BeginsPlain(const QByteArray& bytes) const;
    const TrafficExchange* TakeTurn(Known& known);
    bool IsTooEarly(Known& known) const;
    bool Try(const TrafficPattern& request, Caller& caller, Finding& finding) const;
    void LeaveOut(LineId line, Caller& caller, bool waits);
    void TellUnknown(LineId line, const Caller& caller, const QByteArray& bytes);
    const Known* Nearest(const QByteArray& bytes);
    QString Expected(const Caller& caller) const;
    void Answer(LineId line, Caller& caller, const std::vector<TrafficAnswer>& answers);
    void End(LineId line, PrankedPiece::End end);

    const TrafficFile m_file;
    const ReplayPlan m_plan;
    const ReplayNews m_news;
    std::vector<Known> m_known;
    std::map<QByteArray, std::size_t> m_plain; ///< places in m_known of requests without marks, by their bytes
    std::map<QString, std::size_t> m_marked;   ///< those of requests with marks, by their texts for people
    std::vector<std::size_t> m_markedInOrder;  ///< the same in the order of the file
    std::vector<Place> m_all;
    NearTexts m_texts;     ///< of m_known, once one was not known
    int m_terminator = -1; ///< the byte that ends every request; -1: there is none
    std::map<LineId, Caller> m_callers;
    Mischief m_mischief{0};
    Prank m_prank = Prank::None;
    int m_unknown = 0;
    std::unique_ptr<Endpoint> m_endpoint;
};

} // namespace stagehost
