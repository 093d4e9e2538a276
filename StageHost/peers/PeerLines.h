#pragma once

#include <deque>
#include <map>
#include <optional>
#include <vector>

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace stagehost {

/// Where a peer is reached, as it tells in its first line.
struct PeerEndpoint {
    QString host = QStringLiteral("127.0.0.1");
    int port = 0; ///< 0 for a serial line
    QString path; ///< of a serial line
};

/// What is wrong, under a key, and below it where in a script, a line each.   [any]
QString WithPlace(const QJsonObject& object, const QString& key);

/// What a peer tells on its standard output: first that it is ready, `{"ready":true,"tcp":PORT}`, then what matters to
/// a test: frames that it has received, problems, answers to what it was told to do. A program that tells anything else
/// is ready with its first line, and what it prints is left out. What is kept is bounded: of frames the last 10,000, of
/// the traffic the last 20 lines. A line of more than 1 MiB is not read, which is told: as the answer where it begins
/// like one, as a problem otherwise.   [host main]
class PeerLines {
public:
    /// Takes what has come, in pieces of any size.
    void Take(const QByteArray& bytes);

    bool IsReady() const { return m_ready; }

    /// The endpoint of that name; for an empty one the only one. Null when there is none.
    const PeerEndpoint* Find(const QString& name) const;
    QStringList EndpointNames() const;

    /// The frame that came longest ago and was not taken.
    const QString* NextReceived() const { return m_received.empty() ? nullptr : &m_received.front(); }
    void TakeReceived() { m_received.pop_front(); }

    /// The answer to an order; nothing before it has come.
    std::optional<QJsonObject> TakeAnswer();
    /// Forgets answers that came too late for somebody.
    void ForgetAnswers() { m_answers.clear(); }

    /// What it has complained of and nobody has taken: a text, with where it was in a script below it.
    QStringList TakeProblems();

    /// The last of what it has received and said, as people read it: `received "ON\r"`. Empty for programs that do not
    /// tell.
    const QStringList& LastTraffic() const { return m_traffic; }

private:
    void TakePiece(const QByteArray& piece);
    void TakeLine(const QByteArray& line);
    void TakeLongLine();
    void TakeObject(const QJsonObject& object);
    void TakeTraffic(const QJsonObject& object);
    void TakeReady(const QJsonObject& object);

    QByteArray m_rest;     ///< the begin of a line
    qint64 m_restSize = 0; ///< bytes of the line so far, those of which nothing is kept among them
    bool m_ready = false;
    std::map<QString, PeerEndpoint> m_endpoints;
    std::deque<QString> m_received;
    std::deque<QJsonObject> m_answers;
    QStringList m_problems;
    QStringList m_traffic;
};

} // namespace stagehost
