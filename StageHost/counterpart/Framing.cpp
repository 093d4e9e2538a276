#include "Framing.h"

namespace stagehost {

namespace {

quint64 ReadNumber(const QByteArray& bytes, bool isLittle) {
    quint64 number = 0;
    for (int place = 0; place < bytes.size(); ++place)
        number = number << 8 | static_cast<quint8>(bytes.at(isLittle ? bytes.size() - 1 - place : place));
    return number;
}

} // namespace

std::optional<QByteArray> Framing::Next(QString* problem) {
    std::optional<QByteArray> frame;
    switch (m_rule.kind) {
    case FramingRule::Kind::None:
        return Piece();
    case FramingRule::Kind::Delimited:
        frame = Delimited();
        break;
    case FramingRule::Kind::Fixed:
        frame = OfLength(m_rule.length, 0);
        break;
    case FramingRule::Kind::Prefixed:
        frame = Prefixed();
        break;
    case FramingRule::Kind::Own:
        frame = Own();
        break;
    }
    if (frame || m_waiting.size() <= m_rule.most)
        return frame;
    *problem =
        QStringLiteral("%1 bytes without a frame of at most %2 are thrown away").arg(m_waiting.size()).arg(m_rule.most);
    m_waiting.clear();
    return std::nullopt;
}

std::optional<QByteArray> Framing::Piece() {
    return m_waiting.isEmpty() ? std::nullopt : std::optional(std::exchange(m_waiting, {}));
}

std::optional<QByteArray> Framing::Delimited() {
    const int end = m_waiting.indexOf(m_rule.delimiter);
    if (end < 0)
        return std::nullopt;
    QByteArray frame = m_waiting.left(end);
    m_waiting.remove(0, end + m_rule.delimiter.size());
    const int start = m_rule.start.isEmpty() ? -1 : frame.lastIndexOf(m_rule.start);
    return start < 0 ? frame : frame.mid(start + m_rule.start.size());
}

std::optional<QByteArray> Framing::OfLength(int size, int from) {
    if (m_waiting.size() < size)
        return std::nullopt;
    QByteArray frame = m_waiting.mid(from, size - from);
    m_waiting.remove(0, size);
    return frame;
}

/// A length that no frame can have leaves all of it to be thrown away.
std::optional<QByteArray> Framing::Prefixed() {
    if (m_waiting.size() < m_rule.prefix)
        return std::nullopt;
    const quint64 told = ReadNumber(m_waiting.left(m_rule.prefix), m_rule.isLittle);
    const quint64 size = m_rule.countsPrefix ? told : told + static_cast<quint64>(m_rule.prefix);
    if (size < static_cast<quint64>(m_rule.prefix))
        return OfLength(m_rule.prefix, m_rule.prefix);
    return size > static_cast<quint64>(m_rule.most) ? std::nullopt : OfLength(static_cast<int>(size), m_rule.prefix);
}

std::optional<QByteArray> Framing::Own() {
    const int size = m_waiting.isEmpty() ? 0 : m_rule.own(m_waiting);
    return size > 0 ? OfLength(size, 0) : std::nullopt;
}

} // namespace stagehost
