#pragma once

#include <QByteArray>
#include <QString>

/// @file
/// Text to bytes and back, by the names under which scripts know the encodings:
/// "utf8", "ascii", "base64" and "hex". Any other name stands for "utf8". Pure
/// functions, callable on any thread; they throw std::bad_alloc when memory runs out.

/// The bytes of a text. "ascii" is Latin-1; malformed "base64" and "hex" are read as far as they go.
QByteArray BytesFromText(const QString& text, const QString& encoding);

/// The text of some bytes. "utf8" and "ascii" end before the
/// first zero byte, and "ascii" looks at seven bits of each byte.
QString TextFromBytes(const QByteArray& bytes, const QString& encoding);

/// The most characters that TextFromBytes can give for so many bytes.
qint64 LongestText(qint64 byteCount, const QString& encoding);
