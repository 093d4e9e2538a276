#include "TrafficText.h"

#include <algorithm>
#include <cctype>

#include <QJsonArray>

namespace stagehost {

namespace {

constexpr int kShortestRun = 4; // characters; less of it between other bytes is chance

bool IsPlainControl(uchar byte) {
    return byte == '\t' || byte == '\r' || byte == '\n';
}

/// The length of the sequence of UTF-8 (RFC 3629) that begins here and stands for text; 0 when none does.
int TextAt(const QByteArray& bytes, int at) {
    const auto first = static_cast<uchar>(bytes.at(at));
    if (first < 0x80)
        return (first >= 0x20 && first != 0x7F) || IsPlainControl(first) ? 1 : 0;
    const int length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || at + length > bytes.size())
        return 0;
    const QByteArray sequence = bytes.mid(at, length);
    const QString text = QString::fromUtf8(sequence);
    const bool isWhole = text.toUtf8() == sequence && !text.contains(QChar(QChar::ReplacementCharacter));
    const bool isControl = first == 0xC2 && static_cast<uchar>(bytes.at(at + 1)) < 0xA0;
    return isWhole && !isControl ? length : 0;
}

/// Where the text that begins here ends. @param characters gets how many it has.
int EndOfText(const QByteArray& bytes, int at, int& characters) {
    characters = 0;
    while (at < bytes.size()) {
        const int length = TextAt(bytes, at);
        if (length == 0)
            break;
        at += length;
        ++characters;
    }
    return at;
}

QString Hex(const QByteArray& bytes) {
    return QString::fromLatin1(bytes.toHex(' '));
}

QJsonObject HexJson(const QByteArray& bytes) {
    return {{QStringLiteral("hex"), Hex(bytes)}};
}

QJsonArray PartsOf(const QByteArray& bytes) {
    QJsonArray parts;
    int begin = 0; // of what is not text
    int at = 0;
    while (at < bytes.size()) {
        int characters = 0;
        const int end = EndOfText(bytes, at, characters);
        if (characters < kShortestRun) {
            at = qMax(end, at + 1);
            continue;
        }
        if (at > begin)
            parts += HexJson(bytes.mid(begin, at - begin));
        parts += QString::fromUtf8(bytes.mid(at, end - at));
        begin = at = end;
    }
    if (begin < bytes.size())
        parts += HexJson(bytes.mid(begin));
    return parts;
}

bool PartFromJson(const QJsonValue& part, QByteArray& bytes, QString& problem) {
    if (part.isString()) {
        bytes += part.toString().toUtf8();
        return true;
    }
    return BytesFromJson(part.toObject(), bytes, problem);
}

QString EscapeOf(uchar byte) {
    switch (byte) {
    case '\r':
        return QStringLiteral("\\r");
    case '\n':
        return QStringLiteral("\\n");
    case '\t':
        return QStringLiteral("\\t");
    case '\\':
        return QStringLiteral("\\\\");
    default:
        return QStringLiteral("\\x%1").arg(byte, 2, 16, QLatin1Char('0'));
    }
}

} // namespace

QJsonObject BytesToJson(const QByteArray& bytes) {
    int characters = 0;
    if (EndOfText(bytes, 0, characters) == bytes.size())
        return {{QStringLiteral("text"), QString::fromUtf8(bytes)}};
    const QJsonArray parts = PartsOf(bytes);
    if (parts.size() == 1)
        return HexJson(bytes);
    return {{QStringLiteral("parts"), parts}};
}

bool BytesFromJson(const QJsonObject& object, QByteArray& bytes, QString& problem) {
    const QJsonValue text = object.value(QLatin1String("text"));
    const QJsonValue hex = object.value(QLatin1String("hex"));
    const QJsonValue parts = object.value(QLatin1String("parts"));
    if (text.isString()) {
        bytes += text.toString().toUtf8();
        return true;
    }
    if (hex.isString()) {
        problem = QStringLiteral("\"hex\": expected pairs of hexadecimal digits");
        return BytesFromHex(hex.toString(), bytes);
    }
    problem = QStringLiteral("expected \"text\", \"hex\" or \"parts\"");
    if (!parts.isArray())
        return false;
    for (const auto& part : parts.toArray()) {
        if (!PartFromJson(part, bytes, problem))
            return false;
    }
    return true;
}

bool BytesFromHex(const QString& hex, QByteArray& bytes) {
    QByteArray digits = hex.toUtf8();
    digits.replace(' ', "");
    const bool areDigits =
        std::all_of(digits.begin(), digits.end(), [](char digit) { return std::isxdigit(static_cast<uchar>(digit)); });
    if (!areDigits || digits.size() % 2 != 0)
        return false;
    bytes += QByteArray::fromHex(digits);
    return true;
}

QString BytesForPeople(const QByteArray& bytes) {
    QString text;
    for (int at = 0; at < bytes.size();) {
        const auto byte = static_cast<uchar>(bytes.at(at));
        const int length = TextAt(bytes, at);
        if (length == 0 || IsPlainControl(byte) || byte == '\\')
            text += EscapeOf(byte);
        else
            text += QString::fromUtf8(bytes.mid(at, length));
        at += qMax(length, 1);
    }
    return text;
}

} // namespace stagehost
