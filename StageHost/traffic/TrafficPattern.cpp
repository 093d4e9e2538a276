#include "TrafficPattern.h"

#include <algorithm>

#include <QJsonArray>

#include "TrafficText.h"

namespace stagehost {

namespace {

/// A character for each byte, NULs among them.
QString Characters(const QByteArray& bytes) {
    return QString::fromLatin1(bytes.constData(), bytes.size());
}

/// In the expression of a whole line a free place is one group among others.
bool CountsGroups(const QString& expression) {
    static const QRegularExpression reference(
        QStringLiteral(R"((?<!\\)(?:\\\\)*(?:\\[1-9gk]|\(\?(?:<[A-Za-z_]|['P&R]|[+-]?[0-9])))"));
    return reference.match(expression).hasMatch();
}

} // namespace

TrafficPattern::TrafficPattern(const QByteArray& bytes) {
    AddPlain(bytes);
}

void TrafficPattern::AddPlain(const QByteArray& bytes) {
    const bool joins = !m_parts.empty() && m_parts.back().free.isEmpty() && !m_parts.back().isSame;
    if (joins)
        m_parts.back().bytes += bytes;
    else
        m_parts.push_back({bytes, {}, {}, false});
}

QString TrafficPattern::Read(const QJsonObject& line) {
    const QJsonValue parts = line.value(QLatin1String("parts"));
    if (!parts.isArray()) {
        QByteArray bytes;
        QString problem;
        if (!BytesFromJson(line, bytes, problem))
            return problem;
        AddPlain(bytes);
        return {};
    }
    for (const auto& part : parts.toArray()) {
        QString problem = ReadPart(part);
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}

QString TrafficPattern::ReadPart(const QJsonValue& value) {
    const QJsonObject object = value.toObject();
    const QJsonValue free = object.value(QLatin1String("free"));
    const QJsonValue same = object.value(QLatin1String("same"));
    const QString name = object.value(QLatin1String("as")).toString();
    if (same.isString() && !same.toString().isEmpty()) {
        m_parts.push_back({{}, {}, same.toString(), true});
        return {};
    }
    if (free.isDouble() && free.toInt() > 0) {
        m_parts.push_back({{}, QStringLiteral(".{%1}").arg(free.toInt()), name, false});
        return {};
    }
    if (free.isString() && !free.toString().isEmpty()) {
        const QRegularExpression expression(free.toString());
        if (CountsGroups(free.toString()))
            return QStringLiteral("\"free\": %1: groups have no names here, and nothing refers to one")
                .arg(free.toString());
        m_parts.push_back({{}, free.toString(), name, false});
        return expression.isValid() ? QString()
                                    : QStringLiteral("\"free\": %1: %2").arg(free.toString(), expression.errorString());
    }
    if (!same.isUndefined())
        return QStringLiteral("\"same\": expected the name of a free place");
    if (!free.isUndefined())
        return QStringLiteral("\"free\": expected a regular expression or a count of bytes");
    QByteArray bytes;
    QString problem = QStringLiteral("expected text, \"hex\", \"free\" or \"same\"");
    if (!value.isString() && !BytesFromJson(object, bytes, problem))
        return problem;
    AddPlain(value.isString() ? value.toString().toUtf8() : bytes);
    return {};
}

bool TrafficPattern::HasMarks() const {
    return std::any_of(m_parts.begin(), m_parts.end(),
                       [](const Part& part) { return part.isSame || !part.free.isEmpty(); });
}

QStringList TrafficPattern::Names(bool ofSame) const {
    QStringList names;
    for (const Part& part : m_parts)
        if (part.isSame == ofSame && !part.name.isEmpty())
            names += part.name;
    return names;
}

bool TrafficPattern::HasFree() const {
    return std::any_of(m_parts.begin(), m_parts.end(), [](const Part& part) { return !part.free.isEmpty(); });
}

int TrafficPattern::LastByte() const {
    if (m_parts.empty() || m_parts.back().bytes.isEmpty())
        return -1;
    return static_cast<uchar>(m_parts.back().bytes.back());
}

TrafficPattern::Match TrafficPattern::FitsPlain(const QByteArray& begin) const {
    const QByteArray& bytes = m_parts.front().bytes;
    if (begin.startsWith(bytes))
        return {Match::Whole, bytes.size()};
    return {bytes.startsWith(begin) ? Match::Begins : Match::No, 0};
}

/// Each free part is a group, so that what stood there is known.
QString TrafficPattern::Expression(const FreePlaces& places) const {
    QString expression;
    for (const Part& part : m_parts) {
        const auto known = places.find(part.name);
        if (!part.free.isEmpty())
            expression += QStringLiteral("(?<place%1>%2)").arg(&part - m_parts.data()).arg(part.free);
        else if (part.isSame && known != places.end())
            expression += QRegularExpression::escape(Characters(known->second));
        else
            expression += QRegularExpression::escape(Characters(part.bytes));
    }
    return expression;
}

TrafficPattern::Match TrafficPattern::Fits(const QByteArray& begin, FreePlaces& places) const {
    if (m_parts.empty())
        return {Match::Whole, 0};
    if (!HasMarks())
        return FitsPlain(begin);
    const QRegularExpression expression(Expression(places), QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = expression.match(
        Characters(begin), 0, QRegularExpression::PartialPreferCompleteMatch, QRegularExpression::AnchoredMatchOption);
    if (!match.hasMatch())
        return {match.hasPartialMatch() ? Match::Begins : Match::No, 0};
    for (const Part& part : m_parts) {
        if (!part.free.isEmpty() && !part.name.isEmpty())
            places[part.name] = match.captured(QStringLiteral("place%1").arg(&part - m_parts.data())).toLatin1();
    }
    return {Match::Whole, match.capturedLength()};
}

QByteArray TrafficPattern::Filled(const FreePlaces& places) const {
    QByteArray bytes;
    for (const Part& part : m_parts) {
        const auto known = places.find(part.name);
        bytes += known != places.end() && !part.name.isEmpty() ? known->second : part.bytes;
    }
    return bytes;
}

void TrafficPattern::Append(const TrafficPattern& behind) {
    for (const Part& part : behind.m_parts) {
        if (part.free.isEmpty() && !part.isSame)
            AddPlain(part.bytes);
        else
            m_parts.push_back(part);
    }
}

QString TrafficPattern::ForPeople() const {
    QString text;
    for (const Part& part : m_parts) {
        if (part.isSame)
            text += QStringLiteral("<same %1>").arg(part.name);
        else if (!part.free.isEmpty())
            text += QStringLiteral("<%1>").arg(part.free);
        else
            text += BytesForPeople(part.bytes);
    }
    return text;
}

std::vector<TrafficPattern> TrafficPattern::SplitBehind(char terminator) const {
    if (m_parts.empty() || HasMarks())
        return {*this};
    std::vector<TrafficPattern> pieces;
    const QByteArray& bytes = m_parts.front().bytes;
    for (int at = 0; at < bytes.size();) {
        const int found = bytes.indexOf(terminator, at);
        const int end = found < 0 ? bytes.size() : found + 1;
        pieces.emplace_back(bytes.mid(at, end - at));
        at = end;
    }
    return pieces;
}

} // namespace stagehost
