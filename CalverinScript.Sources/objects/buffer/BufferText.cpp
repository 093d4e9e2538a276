#include "BufferText.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr char kSevenBits = 0x7F;

QByteArray FromUtf8(const QString& text) {
    return text.toUtf8();
}

QByteArray FromAscii(const QString& text) {
    return text.toLatin1();
}

QByteArray FromBase64(const QString& text) {
    return QByteArray::fromBase64(text.toLatin1());
}

QByteArray FromHex(const QString& text) {
    return QByteArray::fromHex(text.toLatin1());
}

int LengthToZero(const QByteArray& bytes) {
    return static_cast<int>(qstrnlen(bytes.constData(), static_cast<uint>(bytes.size())));
}

QString ToUtf8(const QByteArray& bytes) {
    return QString::fromUtf8(bytes.constData(), LengthToZero(bytes));
}

QString ToAscii(const QByteArray& bytes) {
    QByteArray masked = bytes;
    std::for_each(masked.begin(), masked.end(), [](char& c) { c &= kSevenBits; });
    return QString::fromLatin1(masked.constData(), LengthToZero(masked));
}

QString ToBase64(const QByteArray& bytes) {
    return QString::fromLatin1(bytes.toBase64());
}

QString ToHex(const QByteArray& bytes) {
    return QString::fromLatin1(bytes.toHex());
}

struct Encoding {
    const char* name;
    QByteArray (*fromText)(const QString&);
    QString (*toText)(const QByteArray&);
    int textPerByte; ///< characters at most
};

/// The first row stands for every name that is not in the table.
constexpr Encoding kEncodings[] = {{"utf8", &FromUtf8, &ToUtf8, 1},
                                   {"ascii", &FromAscii, &ToAscii, 1},
                                   {"base64", &FromBase64, &ToBase64, 2},
                                   {"hex", &FromHex, &ToHex, 2}};

const Encoding& EncodingOf(const QString& name) {
    const auto* found = std::find_if(std::begin(kEncodings), std::end(kEncodings),
                                     [&](const Encoding& row) { return name == QLatin1String(row.name); });
    return found != std::end(kEncodings) ? *found : kEncodings[0];
}

} // namespace

QByteArray BytesFromText(const QString& text, const QString& encoding) {
    return EncodingOf(encoding).fromText(text);
}

QString TextFromBytes(const QByteArray& bytes, const QString& encoding) {
    return EncodingOf(encoding).toText(bytes);
}

qint64 LongestText(qint64 byteCount, const QString& encoding) {
    constexpr int kPadding = 4;
    return byteCount * EncodingOf(encoding).textPerByte + kPadding;
}
