#include "PeerLines.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace stagehost {

namespace {

constexpr std::size_t kMostFrames = 10000;
constexpr int kMostProblems = 100;
constexpr std::size_t kMostAnswers = 100;
constexpr int kLongestLine = 1024 * 1024;

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

void PeerLines::Take(const QByteArray& bytes) {
    int begin = 0;
    for (int end = bytes.indexOf('\n'); end >= 0; end = bytes.indexOf('\n', begin)) {
        if (!m_skips)
            TakeLine(m_rest + bytes.mid(begin, end - begin));
        m_rest.clear();
        m_skips = false;
        begin = end + 1;
    }
    m_rest += bytes.mid(begin);
    if (m_rest.size() <= kLongestLine)
        return;
    m_rest.clear();
    m_skips = true;
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
        QString problem = object.value(QStringLiteral("problem")).toString();
        for (const QJsonValue line : object.value(QStringLiteral("place")).toArray())
            problem += QStringLiteral("\n    ") + line.toString();
        m_problems += problem;
    }
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
