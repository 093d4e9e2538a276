#include "Voice.h"

#include <QJsonArray>
#include <QJsonDocument>

#include "TrafficText.h"

namespace stagehost {

namespace {

QString Key(const char* name) {
    return QLatin1String(name);
}

/// "tcp 127.0.0.1:4352" of {"tcp":4352}, with the name in front where there is one.
QString PlaceText(const QString& name, const QJsonObject& place) {
    QStringList words;
    if (!name.isEmpty())
        words += name + QLatin1Char(':');
    const QString host = place.value(Key("host")).toString(Key("127.0.0.1"));
    for (const QString& kind : place.keys()) {
        if (kind == Key("serial"))
            words += {kind, place.value(kind).toString()};
        else if (kind != Key("host"))
            words += {kind, QStringLiteral("%1:%2").arg(host).arg(place.value(kind).toInt())};
    }
    return words.join(QLatin1Char(' '));
}

QString LineText(const QString& endpoint, int line, const char* sign, const QByteArray& bytes) {
    const QString where = endpoint.isEmpty() ? QString() : endpoint + QLatin1Char(' ');
    return QStringLiteral("%1%2 %3 %4").arg(where).arg(line).arg(QLatin1String(sign), BytesForPeople(bytes));
}

} // namespace

Voice::Voice(bool json, Write result, Write problem)
    : m_json(json)
    , m_result(std::move(result))
    , m_problem(std::move(problem)) {}

void Voice::Tell(const QJsonObject& object, const QString& line) const {
    m_result(m_json ? QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) : line);
}

void Voice::Ready(const QString& script, const std::map<QString, QJsonObject>& places, quint64 seed) const {
    QJsonObject object;
    QJsonObject named;
    QStringList texts;
    for (const auto& [name, place] : places) {
        texts += PlaceText(name, place);
        if (name.isEmpty())
            object = place;
        else
            named.insert(name, place);
    }
    object.insert(Key("ready"), true);
    object.insert(Key("seed"), static_cast<double>(seed));
    if (!named.isEmpty())
        object.insert(Key("endpoints"), named);
    Tell(object, QStringLiteral("%1 plays at %2 (seed %3)").arg(script, texts.join(Key(", "))).arg(seed));
}

void Voice::Received(const QString& endpoint, int line, const QByteArray& frame) const {
    QJsonObject object{{Key("received"), QString::fromLatin1(frame)}, {Key("line"), line}};
    if (!endpoint.isEmpty())
        object.insert(Key("on"), endpoint);
    Tell(object, LineText(endpoint, line, ">", frame));
}

void Voice::Said(const QString& endpoint, int line, const QByteArray& bytes, const QString& prank) const {
    QJsonObject object{{Key("said"), QString::fromLatin1(bytes)}, {Key("line"), line}};
    if (!endpoint.isEmpty())
        object.insert(Key("on"), endpoint);
    if (!prank.isEmpty())
        object.insert(Key("prank"), prank);
    const QString mark = prank.isEmpty() ? QString() : QStringLiteral("   (%1)").arg(prank);
    Tell(object, LineText(endpoint, line, "<", bytes) + mark);
}

void Voice::Note(const QString& text) const {
    Tell({{Key("note"), text}}, text);
}

void Voice::Problem(const QString& text, const QStringList& place) const {
    if (m_json)
        return Tell({{Key("problem"), text}, {Key("place"), QJsonArray::fromStringList(place)}}, {});
    m_problem(text);
    for (const QString& line : place)
        m_problem(QStringLiteral("    ") + line);
}

void Voice::Done(const QString& what, const QString& result) const {
    QJsonObject object{{Key("done"), what}};
    if (!result.isEmpty())
        object.insert(Key("result"), result);
    Tell(object, result.isEmpty() ? what + Key(": done") : result);
}

void Voice::Refused(const QString& why, const QStringList& place) const {
    if (!m_json)
        return Problem(why, place);
    QJsonObject object{{Key("refused"), why}};
    if (!place.isEmpty())
        object.insert(Key("place"), QJsonArray::fromStringList(place));
    Tell(object, {});
}

} // namespace stagehost
