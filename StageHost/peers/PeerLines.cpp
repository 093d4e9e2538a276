#include "PeerLines.h"

#include <QJsonArray>
#include <QJsonDocument>

#include "FrameText.h"
#include "JsonNode.h"

namespace stagehost {

namespace {

constexpr std::size_t kMostFrames = 10000;
constexpr int kMostProblems = 100;
constexpr std::size_t kMostAnswers = 100;
constexpr int kLongestLine = 1024 * 1024;
constexpr int kToldByBegin = 64; // bytes of a longer one
constexpr int kMostTraffic = 20;
constexpr int kLongestUnknown = 200; // characters

/// What a replay has not known, with what was expected and what is most like it. All of these have their escapes
/// already.
QString UnknownText(const QJsonObject& object) {
    const auto shown = [&](const char* key) {
        return Quoted(object.value(QLatin1String(key)).toString().left(kLongestUnknown));
    };
    QString text = QStringLiteral("received what it does not know: ") + shown("unknown");
    if (!object.value(QStringLiteral("expected")).toString().isEmpty())
        text += QStringLiteral("; expected: ") + shown("expected");
    if (!object.value(QStringLiteral("nearest")).toString().isEmpty())
        text += QStringLiteral("; the nearest: %1, line %2 of its file")
                    .arg(shown("nearest"))
                    .arg(object.value(QStringLiteral("line")).toInt());
    return text;
}

/// What an object tells of the traffic, for people; empty when it tells nothing of it.
QString TrafficText(const QJsonObject& object) {
    const QString prank = object.value(QStringLiteral("prank")).toString();
    const QString endpoint = object.value(QStringLiteral("on")).toString();
    QString text;
    for (const char* deed : {"received", "said"}) {
        if (object.contains(QLatin1String(deed)))
            text =
                QLatin1String(deed) + QLatin1Char(' ') + FrameForPeople(object.value(QLatin1String(deed)).toString());
    }
    if (object.contains(QStringLiteral("unknown")))
        text = UnknownText(object);
    if (!prank.isEmpty())
        text += QStringLiteral(" (%1)").arg(prank);
    return text.isEmpty() || endpoint.isEmpty() ? text : QStringLiteral("on %1 ").arg(endpoint) + text;
}

/// `"tcp":PORT`, `"udp":PORT` or `"serial":PATH`.
std::optional<PeerEndpoint> EndpointOf(const QJsonObject& object) {
    PeerEndpoint endpoint;
    endpoint.path = object.value(QStringLiteral("serial")).toString();
    for (const char* kind : {"tcp", "udp"})
        endpoint.port = object.value(QLatin1String(kind)).toInt(endpoint.port);
    endpoint.host = object.value(QStringLiteral("host")).toString(endpoint.host);
    return endpoint.port > 0 || !endpoint.path.isEmpty() ? std::optional(endpoint) : std::nullopt;
}

} // namespace

QString WithPlace(const QJsonObject& object, const QString& key) {
    QString text = object.value(key).toString();
    for (const QJsonValue line : object.value(QStringLiteral("place")).toArray())
        text += QStringLiteral("\n    ") + line.toString();
    return text;
}

void PeerLines::Take(const QByteArray& bytes) {
    int begin = 0;
    for (int end = bytes.indexOf('\n'); end >= 0; end = bytes.indexOf('\n', begin)) {
        TakePiece(bytes.mid(begin, end - begin));
        if (m_restSize > kLongestLine)
            TakeLongLine();
        else
            TakeLine(m_rest);
        m_rest.clear();
        m_restSize = 0;
        begin = end + 1;
    }
    TakePiece(bytes.mid(begin));
}

/// Of a line that is too long its begin is kept, which tells what it is.
void PeerLines::TakePiece(const QByteArray& piece) {
    m_restSize += piece.size();
    m_rest += piece;
    if (m_restSize > kLongestLine)
        m_rest.truncate(kToldByBegin);
}

void PeerLines::TakeLongLine() {
    const QString why = QStringLiteral("has told a line of %1 bytes, and %2 are the most that are read")
                            .arg(m_restSize)
                            .arg(kLongestLine);
    const bool isAnswer = m_rest.startsWith("{\"done\":") || m_rest.startsWith("{\"refused\":");
    TakeObject({{isAnswer ? QStringLiteral("refused") : QStringLiteral("problem"), why}});
}

void PeerLines::TakeLine(const QByteArray& line) {
    const QJsonObject object = line.startsWith('{') ? QJsonDocument::fromJson(line).object() : QJsonObject();
    TakeObject(object);
    const bool speaksFirst = object.contains(QStringLiteral("problem")) || object.contains(QStringLiteral("note"));
    m_ready = m_ready || !speaksFirst; // a script may note something before its endpoints are open
}

void PeerLines::TakeObject(const QJsonObject& object) {
    const auto has = [&](const char* key) { return object.contains(QLatin1String(key)); };
    if (has("ready"))
        TakeReady(object);
    TakeTraffic(object);
    if (has("received")) {
        m_received.push_back(object.value(QStringLiteral("received")).toString());
        if (m_received.size() > kMostFrames)
            m_received.pop_front();
    }
    if (has("done") || has("refused"))
        m_answers.push_back(object);
    if (m_answers.size() > kMostAnswers)
        m_answers.pop_front();
    if (has("problem") && m_problems.size() < kMostProblems) {
        m_problems += WithPlace(object, QStringLiteral("problem"));
    }
}

void PeerLines::TakeTraffic(const QJsonObject& object) {
    const QString text = TrafficText(object);
    if (text.isEmpty())
        return;
    m_traffic += text;
    if (m_traffic.size() > kMostTraffic)
        m_traffic.removeFirst();
}

void PeerLines::TakeReady(const QJsonObject& object) {
    const QJsonObject named = object.value(QStringLiteral("endpoints")).toObject();
    if (const auto only = EndpointOf(object))
        m_endpoints[QString()] = *only;
    for (const QString& name : named.keys()) {
        if (const auto endpoint = EndpointOf(named.value(name).toObject()))
            m_endpoints[name] = *endpoint;
    }
}

const PeerEndpoint* PeerLines::Find(const QString& name) const {
    const bool isOnly = name.isEmpty() && m_endpoints.size() == 1;
    const auto found = isOnly ? m_endpoints.begin() : m_endpoints.find(name);
    return found == m_endpoints.end() ? nullptr : &found->second;
}

QStringList PeerLines::EndpointNames() const {
    QStringList names;
    for (const auto& [name, endpoint] : m_endpoints)
        names += name;
    return names;
}

std::optional<QJsonObject> PeerLines::TakeAnswer() {
    if (m_answers.empty())
        return std::nullopt;
    QJsonObject answer = m_answers.front();
    m_answers.pop_front();
    return answer;
}

QStringList PeerLines::TakeProblems() {
    QStringList problems;
    problems.swap(m_problems);
    return problems;
}

} // namespace stagehost
