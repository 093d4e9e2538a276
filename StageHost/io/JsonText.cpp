#include "JsonText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QVector>

namespace stagehost {

namespace {

QByteArray Encoded(const QJsonValue& value) {
    const QByteArray list = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return list.mid(1, list.size() - 2);
}

QString Decoded(const QByteArray& text) {
    return QJsonDocument::fromJson('[' + text + ']').array().at(0).toString();
}

/// Some editors write the mark of UTF-8 in front of a text.
int BeginOf(const QByteArray& text) {
    const QByteArray mark("\xEF\xBB\xBF");
    return text.startsWith(mark) ? mark.size() : 0;
}

bool IsBlank(char character) {
    return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

} // namespace

bool JsonText::SetMember(const QStringList& object, const QString& name, const QJsonValue& value) {
    const Span container = Find(object);
    if (container.begin < 0 || m_text.at(container.begin) != '{')
        return false;
    const QVector<Part> parts = PartsOf(container);
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
        if (part->name == name) {
            m_text.replace(part->value.begin, part->value.end - part->value.begin, Encoded(value));
            return true;
        }
    }
    InsertBehind(container, parts, Encoded(name) + ": " + Encoded(value));
    return true;
}

bool JsonText::Append(const QStringList& list, const QJsonValue& value) {
    const Span container = Find(list);
    if (container.begin < 0 || m_text.at(container.begin) != '[')
        return false;
    InsertBehind(container, PartsOf(container), Encoded(value));
    return true;
}

JsonText::Span JsonText::Find(const QStringList& place) const {
    const int begin = SkipBlank(BeginOf(m_text));
    Span span{begin, SkipValue(begin)};
    for (const QString& step : place) {
        const QVector<Part> parts = PartsOf(span);
        const bool isList = m_text.at(span.begin) == '[';
        span = {};
        for (int index = 0; index < parts.size(); ++index) {
            if (isList ? step == QString::number(index) : step == parts.at(index).name)
                span = parts.at(index).value;
        }
        if (span.begin < 0)
            return span;
    }
    return span;
}

/// The members or items of a container; none for any other value.
QVector<JsonText::Part> JsonText::PartsOf(Span container) const {
    QVector<Part> parts;
    const char kind = m_text.at(container.begin);
    if (kind != '{' && kind != '[')
        return parts;
    int at = SkipBlank(container.begin + 1);
    while (at < container.end - 1) {
        Part part{{}, at, {}};
        if (kind == '{') {
            const int end = SkipText(at);
            part.name = Decoded(m_text.mid(at, end - at));
            at = SkipBlank(SkipBlank(end) + 1);
        }
        part.value = {at, SkipValue(at)};
        parts.append(part);
        at = SkipBlank(part.value.end);
        at = at < container.end - 1 ? SkipBlank(at + 1) : at;
    }
    return parts;
}

int JsonText::SkipBlank(int at) const {
    while (at < m_text.size() && IsBlank(m_text.at(at)))
        ++at;
    return at;
}

int JsonText::SkipText(int at) const {
    for (++at; at < m_text.size() && m_text.at(at) != '"'; ++at)
        at += m_text.at(at) == '\\' ? 1 : 0;
    return at + 1;
}

int JsonText::SkipValue(int at) const {
    int depth = 0;
    for (; at < m_text.size(); ++at) {
        const char character = m_text.at(at);
        const bool closes = character == '}' || character == ']';
        if (character == '"')
            at = SkipText(at) - 1;
        else if (character == '{' || character == '[')
            ++depth;
        else if (depth == 0 && (closes || character == ',' || IsBlank(character)))
            return at;
        else if (closes)
            --depth;
        if (depth == 0 && (closes || character == '"'))
            return at + 1;
    }
    return at;
}

/// Adds a part as the last one stands: on a line of its own, as deep, or on the same line.
void JsonText::InsertBehind(Span container, const QVector<Part>& parts, const QByteArray& part) {
    if (parts.isEmpty()) {
        m_text.replace(container.begin + 1, container.end - container.begin - 2, part);
        return;
    }
    const int lineBegin = m_text.lastIndexOf('\n', parts.last().begin) + 1;
    const QByteArray before = m_text.mid(lineBegin, parts.last().begin - lineBegin);
    const bool ownLine = lineBegin > 0 && before.trimmed().isEmpty();
    m_text.insert(parts.last().value.end, (ownLine ? ",\n" + before : QByteArray(", ")) + part);
}

} // namespace stagehost
